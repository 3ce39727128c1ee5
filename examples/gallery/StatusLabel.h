#pragma once

/// \file
/// A label that shows a read-only value.

#include "Tone.h"

#include <QtWidgets/QLabel>

namespace Zelkor
{
namespace Gallery
{

/// Shows the text of a value. The tone of the value, such as Tone::Good, determines the colour of the text. The user
/// can select and copy the text. A long text does not widen the window.
class StatusLabel : public QLabel
{
    Q_OBJECT

public:
    explicit StatusLabel(QString const& accessibleName, QWidget* parent = nullptr);

    /// Sets the text and the tone of the value.
    void Show(QString const& text, Tone tone = Tone::Neutral);

protected:
    void changeEvent(QEvent* event) override;

private:
    void UpdateColour();

    Tone tone_ = Tone::Neutral;
};

} // namespace Gallery
} // namespace Zelkor
