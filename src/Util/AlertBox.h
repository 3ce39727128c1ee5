#pragma once

/// \file
/// The message box in the house style.

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

/// A message box of one of three levels, which gives itself a title and an icon, and names and tags its buttons for the
/// application's style sheet.
///
/// \code
/// auto const buttons = QMessageBox::Yes | QMessageBox::No;
/// if (AlertBox::Exec(AlertBox::Question, tr("Delete"), tr("Delete the film?"), buttons, this) == QMessageBox::Yes) ...
/// \endcode
///
/// **For style sheets.** The box has the property "Level" (ApplyMessageLevel()). Each button has an object name
/// ("buttonOk", "buttonUnknown" for a custom one), and the properties "SubStyle" ("Ok", "Yes", "Cancel"), "styleHint"
/// ("activeButton", "rejectButton") and "buttonRole" ("Accept", "Reject", ...).
///
/// **Icons** are the application's resources ":/MessageBox/info_icon.png", "error_icon.png" and "question_icon.png".
///
/// **Buttons that are added later** get what belongs to them by PrepareToShow(), which Exec() and Show() call, and
/// their names by SetDefaultButtonNames(). Which button is the default one, and which Esc presses, is QMessageBox's
/// rule.
///
/// GUI thread.
class ZQTUTIL_EXPORT AlertBox : public QMessageBox
{
    Q_OBJECT
    /// The least width of the dialog in pixels; -1: none.
    Q_PROPERTY(int minimumDialogWidth READ GetWidth WRITE SetWidth)
    /// The spacing between the buttons in pixels, as set last.
    Q_PROPERTY(int spacing READ GetSpacing WRITE SetSpacing)
    /// Whether the box gets the icon of its level when it has none.
    Q_PROPERTY(bool useDefaultLevelIcon READ GetUseDefaultLevelIcon WRITE SetUseDefaultLevelIcon)

public:
    /// What the box is about; decides on the default title and icon.
    enum Level { Information, Error, Question };

    /// A bare message box of level Information, without parent, names, title and style.
    AlertBox();

    /// A box of \a level with \a text and \a buttons, owned by \a parent, if any.
    ///
    /// When \a title is empty, Information and Error have their own ("Information", "Error"), and Question has none but
    /// a least width of 300 pixels.
    AlertBox(Level level, QString const& title, QString const& text, QMessageBox::StandardButtons buttons = NoButton,
             QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);

    ~AlertBox() override;

    /// Shows a box made of these arguments modally, and returns the standard button that was clicked; 0 when the box
    /// goes with its \a parent meanwhile. Turns the event loop.
    static int Exec(Level level, QString const& title, QString const& text,
                    QMessageBox::StandardButtons buttons = NoButton, QWidget* parent = nullptr,
                    Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);

    /// Prepares the box, shows it modally, and returns what `QDialog::exec()` does. Turns the event loop.
    virtual int Exec();

    /// Prepares the box, shows it, modal or not, and returns at once.
    virtual void Show(bool modal);

    /// SetButtonsSubStyle(), UpdateDefaultIcon(), Repolish(): for callers that show the box in another way.
    void PrepareToShow();

    /// Holds the dialog to at least \a width pixels; nothing when the layout is not the grid of a message box. When
    /// negative, the dialog is held no more.
    void SetWidth(int width);
    /// The width that is held; -1 when none is. After a negative SetWidth() it is 0 until the event loop has run.
    int GetWidth() const;

    /// Sets the \a spacing between the buttons in pixels. Nothing without buttons.
    void SetSpacing(int spacing);
    /// The spacing that was set last; 0 before.
    int GetSpacing() const;

    /// Whether the box gets the icon of its level when it is shown without any.
    void SetUseDefaultLevelIcon(bool use);
    /// Whether it does; true at first.
    bool GetUseDefaultLevelIcon() const;

    /// Shows \a link, rich text such as `<a href="...">Learn more</a>`, below the text.
    void SetLearnMoreLink(QString const& link);

    /// Has \a opener, which is shared, open the links in the labels that the box has now; null: each label opens its
    /// links itself. Every other connection to `linkActivated` of the labels goes. Call it again when the texts change.
    void SetLinksOpener(std::shared_ptr<App::ILinksOpener> const& opener);

    /// Names every button after its standard button: "buttonOk", "buttonRestoreDefaults"; "buttonUnknown" for custom
    /// ones.
    void SetDefaultButtonNames();

    /// Tags every button with "SubStyle", "styleHint" and "buttonRole".
    void SetButtonsSubStyle();

    /// Gives the box the look of another \a level; its icon and title stay.
    void SetDialogSubStyle(Level level);

    /// Sets the icon of the level, unless the box has an icon, or is not to have the default one.
    void UpdateDefaultIcon();

    /// Applies the style sheet to the box and all in it again.
    void Repolish();

    /// The icon of \a level; null for a value that is no level, or when the application has no such resource.
    static QPixmap GetPixmapForLevel(Level level);

private:
    QPointer<QWidget> widthSpacer_;
    QMetaObject::Connection widthConnection_;
    int buttonSpacing_ = 0;
    Level const level_ = Information;
    bool useDefaultLevelIcon_ = true;
    bool widthSpacerEnds_ = false; // it is scheduled for deletion
};

} // namespace Util
} // namespace Zelkor
