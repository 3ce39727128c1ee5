#pragma once

/// \file
/// A read-only value.

#include "Tone.h"

#include <QtWidgets/QLabel>

namespace Zelkor
{
namespace Gallery
{

/// A value that can be selected and copied, in the colour of its tone. A long one does not widen the window.
class StatusLabel : public QLabel
{
    Q_OBJECT

public:
    explicit StatusLabel(QString const& accessibleName, QWidget* parent = nullptr);

    void Show(QString const& text, Tone tone = Tone::Neutral);

protected:
    void changeEvent(QEvent* event) override;

private:
    void Colour();

    Tone tone_ = Tone::Neutral;
};

} // namespace Gallery
} // namespace Zelkor
