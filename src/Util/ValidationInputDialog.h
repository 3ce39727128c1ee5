#pragma once

/// \file
/// A dialog in which the user enters one line of text. The text is checked while the user types.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// A dialog in which the user enters one line of text. When the text changes, the dialog checks it with up to two
/// functions.
///
/// \code
/// ValidationInputDialog dialog(tr("Rename"), tr("New name:"), name, IsFileName, IsNotTaken);
/// if (dialog.exec() == QDialog::Accepted) {
///     Rename(dialog.inputText());
/// }
/// \endcode
///
/// | First check | Second check | OK button | Style hint of the field | Message below the field |
/// |-------------|--------------|-----------|-------------------------|-------------------------|
/// | fails       | not called   | disabled  | "error"                 | shown                   |
/// | passes      | fails        | enabled   | "error"                 | shown                   |
/// | passes      | passes       | enabled   | "normal"                | hidden                  |
///
/// If only the second check fails, the message is a warning: the user can still accept the text.
///
/// OK is the default button. The Esc key has the same effect as the Cancel button. The parent of the dialog is the
/// result of SpontaneousDialog::findParent(). Use the object on the GUI thread.
class ZQTUTIL_EXPORT ValidationInputDialog : public QDialog
{
    Q_OBJECT

public:
    /// A function that returns true if \a input passes the check. It can write a text for the user to \a message.
    ///
    /// \param input    the text of the field after `QString::simplified()`
    /// \param message  the text that the dialog shows below the field if a check fails. It is empty when the first
    ///                 check is called. The second check receives the text that the first check has written.
    using Check = std::function<bool(QString const& input, QString& message)>;

    /// Creates the dialog.
    ///
    /// \param title        the window title
    /// \param labelText    the label above the field
    /// \param text         the initial text of the field. The checks run in the constructor only if \a text is not
    ///                     empty.
    /// \param firstCheck   the first check. The OK button is disabled while this check fails.
    /// \param secondCheck  the second check. If only this check fails, the dialog shows a warning.
    ///
    /// Neither check may be an empty `std::function`. The dialog throws `std::bad_function_call` when it calls an empty
    /// one.
    ValidationInputDialog(QString const& title, QString const& labelText, QString const& text, Check const& firstCheck,
                          Check const& secondCheck);

    ~ValidationInputDialog() override;

    /// Returns the text of the field after `QString::simplified()`.
    ///
    /// Each call of this function calls the first check again. If the first check fails, the function returns an empty
    /// string, even if the user has already accepted the dialog.
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
