#include "StatusLabel.h"

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>

namespace Zelkor::Gallery
{

StatusLabel::StatusLabel(QString const& accessibleName, QWidget* parent)
    : QLabel(parent)
{
    setAccessibleName(accessibleName);
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusLabel::Show(QString const& text, Tone tone)
{
    setText(text);
    setToolTip(text.toHtmlEscaped());
    tone_ = tone;
    UpdateColour();
}

void StatusLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        UpdateColour();
    }
}

// setPalette() sends a PaletteChange event, and changeEvent() then calls this function again. To avoid infinite
// recursion, the function returns if the colour is already set.
void StatusLabel::UpdateColour()
{
    QColor const color = ToneColor(tone_, QApplication::palette());
    if (palette().color(QPalette::WindowText) == color) {
        return;
    }
    QPalette own;
    own.setColor(QPalette::WindowText, color);
    setPalette(own);
}

} // namespace Zelkor::Gallery
