#pragma once

/// \file
/// The message handler that is installed before QtLogHandler, which forwards messages to it.

#include "CrossThreadQueue.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Emits the messages that reach the handler on any thread as signals on the thread of this object. If there are
/// several objects, only the latest receives messages.
class PreviousHandler : public QObject
{
    Q_OBJECT

public:
    /// Messages whose category starts with this prefix are shown in the window only, not in the terminal.
    static constexpr char DemoCategoryPrefix[] = "gallery.";

    /// Installs the handler. It forwards messages to the handler that was installed before. Call it once, before
    /// QtLogHandler::GetInstance().
    static void Install();

    explicit PreviousHandler(QObject* parent = nullptr);
    ~PreviousHandler() override;

Q_SIGNALS:
    /// Emitted with the messages since the last emission, each in the form "type  category  text".
    void MessagesReceived(std::vector<QString> const& messages);

private:
    static void Handle(QtMsgType type, QMessageLogContext const& context, QString const& message);

    CrossThreadQueue<QString> queue_;
};

} // namespace Gallery
} // namespace Zelkor
