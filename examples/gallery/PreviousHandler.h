#pragma once

/// \file
/// A Qt message handler that is installed before QtLogHandler. QtLogHandler forwards messages to it.

#include "CrossThreadQueue.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Install() installs a Qt message handler, which Qt can call on any thread. The PreviousHandler object receives the
/// messages from this handler and emits MessagesReceived() on the thread of the object. If there are several
/// PreviousHandler objects, only the object that was created last receives messages.
class PreviousHandler : public QObject
{
    Q_OBJECT

public:
    /// The prefix of the categories of the gallery's demo messages. Messages in these categories are shown only in the
    /// window and not on the terminal.
    static constexpr char DemoCategoryPrefix[] = "gallery.";

    /// Installs the message handler. The installed handler forwards all messages except demo messages to the handler
    /// that was installed before it. Call Install() once, before QtLogHandler::GetInstance().
    static void Install();

    explicit PreviousHandler(QObject* parent = nullptr);
    ~PreviousHandler() override;

Q_SIGNALS:
    /// Emitted with all messages that were received since the previous emission. Each message has the form
    /// "type  category  text".
    void MessagesReceived(std::vector<QString> const& messages);

private:
    static void Handle(QtMsgType type, QMessageLogContext const& context, QString const& message);

    CrossThreadQueue<QString> queue_;
};

} // namespace Gallery
} // namespace Zelkor
