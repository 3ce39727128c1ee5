#pragma once

/// \file
/// The message handler that QtLogHandler hands messages on to.

#include "Mailbox.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Tells of the messages that reach the handler from any thread, on the thread of this object. The latest object gets
/// them.
class PreviousHandler : public QObject
{
    Q_OBJECT

public:
    /// Messages whose category begins with this are for the window only, and spare the terminal.
    static constexpr char DemoCategories[] = "gallery.";

    /// Installs the handler, which hands messages on to the one that is there. Called once, before there is a
    /// QtLogHandler.
    static void Install();

    explicit PreviousHandler(QObject* parent = nullptr);
    ~PreviousHandler() override;

Q_SIGNALS:
    /// Each of \a messages as "type  category  text".
    void Arrived(std::vector<QString> const& messages);

private:
    static void Handle(QtMsgType type, QMessageLogContext const& context, QString const& message);

    Mailbox<QString> mailbox_;
};

} // namespace Gallery
} // namespace Zelkor
