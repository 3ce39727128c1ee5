#pragma once

/// \file
/// A table of events in the order in which they happened.

#include "Tone.h"

#include <QtWidgets/QTableWidget>

namespace Zelkor
{
namespace Gallery
{

/// Lists events and scrolls to the newest, which is last. Events of the same iteration of the event loop have the same
/// number.
class Timeline : public QTableWidget
{
    Q_OBJECT

public:
    explicit Timeline(QWidget* parent = nullptr);

    /// Appends the event \a event of the object named \a object, in the colour of \a tone.
    void Add(QString const& object, QString const& event, Tone tone = Tone::Neutral);

    /// Removes all events and restarts the numbers.
    void Clear();

private:
    void EndIteration();

    int iteration_ = 0;
    bool isInIteration_ = false;
};

} // namespace Gallery
} // namespace Zelkor
