#pragma once

/// \file
/// A message box with default titles and icons, and with names and properties for style sheets.

#include <Base/ILinksOpener.h>
#include <Util/Export.h>

#include <QtCore/QMetaObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtGui/QPixmap>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QWidget>

#include <memory>

namespace Zelkor
{
namespace Util
{

/// A message box that has one of three levels. The level selects a default title and a default icon. The box sets
/// object names and dynamic properties on itself and its buttons, so that the application's style sheet can select
/// them.
///
/// \code
/// AlertBox::Exec(AlertBox::Information, QString(), tr("The film has been saved."), QMessageBox::Ok, this);
///
/// auto const buttons = QMessageBox::Yes | QMessageBox::No;
/// if (AlertBox::Exec(AlertBox::Question, tr("Delete"), tr("Delete the film?"), buttons, this) == QMessageBox::Yes) {
///     DeleteFilm();
/// }
/// \endcode
///
/// **Style sheets.** The property "Level" of the box contains the level, see ApplyMessageLevel().
/// SetDefaultButtonNames() and SetButtonsSubStyle() document the object names and the properties of the buttons.
///
/// **Icons.** The application should provide the default icons as resources: ":/MessageBox/info_icon.png",
/// ":/MessageBox/error_icon.png" and ":/MessageBox/question_icon.png".
///
/// **A box without buttons.** If the box has no buttons, QMessageBox adds an OK button when the box is shown. This
/// button has neither an object name nor properties. Pass `QMessageBox::Ok` to get an OK button that style sheets can
/// select.
///
/// **Additional buttons.** If you add buttons after construction, call SetDefaultButtonNames() to set their object
/// names. Exec() and Show() set the properties of all buttons through PrepareToShow().
///
/// QMessageBox determines the default button and the button that the Esc key activates.
///
/// **Thread.** Use the object on the GUI thread.
class ZQTUTIL_EXPORT AlertBox : public QMessageBox
{
    Q_OBJECT
    /// The minimum width of the dialog in pixels; -1 if no minimum width is set.
    Q_PROPERTY(int minimumDialogWidth READ GetWidth WRITE SetWidth)
    /// The spacing between the buttons in pixels. Contains the last value that SetSpacing() has applied; initially 0.
    Q_PROPERTY(int spacing READ GetSpacing WRITE SetSpacing)
    /// True if a box without an icon gets the default icon of its level before it is shown; initially true.
    Q_PROPERTY(bool useDefaultLevelIcon READ GetUseDefaultLevelIcon WRITE SetUseDefaultLevelIcon)

public:
    /// The kind of message. The level determines the default title, the default icon and the property "Level".
    enum Level { Information, Error, Question };

    /// Creates a message box of level Information without a parent, a title, buttons or a style sheet. The property
    /// "Level" is not set.
    AlertBox();

    /// Creates a message box and calls SetDefaultButtonNames().
    ///
    /// \param level    the level of the box; the level cannot be changed later
    /// \param title    the window title. If \a title is empty, a box of level Information has the translated title
    ///                 "Information", and a box of level Error has the translated title "Error". A box of level
    ///                 Question then has no title, and its minimum width is set to 300 pixels.
    /// \param text     the text of the message
    /// \param buttons  the standard buttons. If \a buttons is NoButton, QMessageBox adds an OK button when the box is
    ///                 shown. The added button has neither an object name nor properties for style sheets.
    /// \param parent   the owner of the box; can be null
    /// \param flags    the window flags
    AlertBox(Level level, QString const& title, QString const& text, QMessageBox::StandardButtons buttons = NoButton,
             QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);

    ~AlertBox() override;

    /// Creates a box, prepares it with PrepareToShow(), shows it modally and destroys it. Runs a nested event loop. For
    /// the parameters, see the constructor.
    ///
    /// \returns the standard button that was clicked; 0 if the box is destroyed together with its \a parent while it is
    ///          shown
    static int Exec(Level level, QString const& title, QString const& text,
                    QMessageBox::StandardButtons buttons = NoButton, QWidget* parent = nullptr,
                    Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);

    /// Prepares the box with PrepareToShow() and shows it modally. Runs a nested event loop.
    ///
    /// \returns the result of `QDialog::exec()`: the standard button that was clicked, or an opaque value if a custom
    ///          button was clicked
    virtual int Exec();

    /// Prepares the box with PrepareToShow(), shows it and returns immediately.
    ///
    /// \param modal  true to block input to all other windows of the application while the box is visible
    virtual void Show(bool modal);

    /// Calls SetButtonsSubStyle(), UpdateDefaultIcon() and Repolish(), in this order. Exec() and Show()
    /// call this function. Call it yourself before you show the box in another way, for example with `QDialog::open()`.
    void PrepareToShow();

    /// Sets the minimum width of the dialog to \a width pixels. A negative value removes the minimum width. A value
    /// of 0 or more is ignored if the layout of the box is not a QGridLayout.
    void SetWidth(int width);
    /// Returns the minimum width in pixels, or -1 if no minimum width is set. If SetWidth() has just removed the
    /// minimum width, this function returns 0. It returns -1 only after the event loop has run.
    int GetWidth() const;

    /// Sets the spacing between the buttons to \a spacing pixels. Does nothing if the box has no buttons, or if the
    /// layout of the buttons is not a QHBoxLayout.
    void SetSpacing(int spacing);
    /// Returns the last spacing that SetSpacing() has applied, in pixels. Initially returns 0.
    int GetSpacing() const;

    /// Enables the default icon if \a use is true, otherwise disables it. See UpdateDefaultIcon().
    void SetUseDefaultLevelIcon(bool use);
    /// Returns true if the default icon is enabled; initially true.
    bool GetUseDefaultLevelIcon() const;

    /// Shows \a link below the text. \a link is rich text, for example `<a href="...">Learn more</a>`. Replaces the
    /// informative text of the box.
    void SetLearnMoreLink(QString const& link);

    /// Sets the object that opens the links in all current labels of the box. The labels share ownership of \a opener.
    /// If \a opener is null, each label opens its links itself.
    ///
    /// Removes all other connections from the signal `QLabel::linkActivated()` of these labels. QMessageBox creates
    /// labels on demand, so call this function again after you have added text to the box.
    void SetLinksOpener(std::shared_ptr<App::ILinksOpener> const& opener);

    /// Sets the object name of every button to "button" followed by the name of its standard button, for example
    /// "buttonOk" or "buttonRestoreDefaults". The object name of a custom button is "buttonUnknown".
    void SetDefaultButtonNames();

    /// Sets dynamic properties on every button and applies the style sheet to the button. If a button matches two rows
    /// of the table, the values of the lower row replace the values of the upper row. An empty cell replaces nothing.
    ///
    /// | Button                                        | "SubStyle" | "styleHint"    |
    /// |-----------------------------------------------|------------|----------------|
    /// | `Ok`, or a button with `AcceptRole`           | "Ok"       | "activeButton" |
    /// | otherwise `Yes`, or a button with `YesRole`   | "Yes"      | "activeButton" |
    /// | `Cancel`, or a button with `RejectRole`       | "Cancel"   | "rejectButton" |
    /// | `No`                                          |            | "rejectButton" |
    ///
    /// The property "buttonRole" of every button is set to the name of the button's role without the suffix "Role", for
    /// example to "Accept" for `AcceptRole`.
    void SetButtonsSubStyle();

    /// Sets the property "Level" of the box to \a level. Changes neither the icon nor the title. Ignores a value
    /// outside the enumeration.
    void SetDialogSubStyle(Level level);

    /// If the box has no icon and the default icon is enabled, shows the default icon for the level of the box.
    void UpdateDefaultIcon();

    /// Applies the style sheet again to the box and to all widgets inside it.
    void Repolish();

    /// Returns the default icon of \a level. Returns a null pixmap if \a level is outside the enumeration, or if the
    /// application does not provide the resource of the icon.
    static QPixmap GetPixmapForLevel(Level level);

private:
    QPointer<QWidget> widthSpacer_;
    QMetaObject::Connection widthConnection_;
    int buttonSpacing_ = 0;
    Level const level_ = Information;
    bool useDefaultLevelIcon_ = true;
    bool isWidthSpacerDeletionPending_ = false;
};

} // namespace Util
} // namespace Zelkor
