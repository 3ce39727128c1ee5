#pragma once

/// \file
/// A dialog for one line of text that is checked while the user types.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>

namespace Zelkor
{
namespace Util
{

/// A dialog for one line of text. Two checks run on every change of the text.
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
/// The second check is therefore a warning: the user can still accept the text.
///
/// OK is the default button. Esc presses Cancel. The parent of the dialog is the result of
/// SpontaneousDialog::findParent(). GUI thread.
class ZQTUTIL_EXPORT ValidationInputDialog : public QDialog
{
    Q_OBJECT

public:
    /// Returns true if \a input passes the check. Can write a text for the user to \a message.
    ///
    /// \param input    the text of the field after `QString::simplified()`
    /// \param message  the text below the field. It is empty when the first check is called. The second check receives
    ///                 the message of the first one.
    using Check = std::function<bool(QString const& input, QString& message)>;

    /// Creates the dialog.
    ///
    /// \param title        the window title
    /// \param labelText    the label above the field
    /// \param text         the initial text of the field. The checks run for it only if it is not empty.
    /// \param firstCheck   rejects a text. An empty function throws `std::bad_function_call` when it is called.
    /// \param secondCheck  warns about a text. An empty function throws `std::bad_function_call` when it is called.
    ValidationInputDialog(QString const& title, QString const& labelText, QString const& text, Check const& firstCheck,
                          Check const& secondCheck);

    ~ValidationInputDialog() override;

    /// Returns the text of the field after `QString::simplified()`. Returns an empty text if the first check fails,
    /// even after the dialog was accepted.
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
