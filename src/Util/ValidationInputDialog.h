#pragma once

/// \file
/// A line of text, checked as it is typed.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// Asks for one line of text, and checks it as it is typed.
///
/// \code
/// ValidationInputDialog dialog(tr("Rename"), tr("New name:"), name, IsFileName, IsNotTaken);
/// if (dialog.exec() == QDialog::Accepted) {
///     Rename(dialog.inputText());
/// }
/// \endcode
///
/// What fails the first check cannot be accepted. What passes it and fails the second can be, and is shown with a
/// warning: the field has the style hint "error" instead of "normal", and the message of the check stands below.
///
/// The buttons are OK, which is the default one, and Cancel, which Esc presses. The dialog's parent is the one that
/// SpontaneousDialog finds. GUI thread.
class ZQTUTIL_EXPORT ValidationInputDialog : public QDialog
{
    Q_OBJECT

public:
    /// Says whether \a input, its whitespace simplified, passes, and what is to be told, through \a message.
    using Check = std::function<bool(QString const& input, QString& message)>;

    /// A dialog with \a title that asks for what \a labelText says, starting with \a text. The checks run on every
    /// change; at first, only when \a text is not empty.
    ///
    /// An empty check throws `std::bad_function_call` when it is called.
    ValidationInputDialog(QString const& title, QString const& labelText, QString const& text, Check const& firstCheck,
                          Check const& secondCheck);

    ~ValidationInputDialog() override;

    /// The text, its whitespace simplified, when it passes the first check; otherwise empty.
    QString inputText();

private:
    class UI;

    void checkInput(QString const& text);

    std::unique_ptr<UI> ui_;
    Check firstCheck_;
    Check secondCheck_;
};

} // namespace Util
} // namespace Zelkor
