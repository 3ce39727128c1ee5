#pragma once

/// \file
/// A table of events in the order in which they happened.

#include "Tone.h"

#include <QtWidgets/QTableWidget>

namespace Zelkor
{
namespace Gallery
{

/// Lists events and scrolls to the newest event, which is in the last row. The first column shows in which iteration of
/// the event loop the event was added. Iterations in which no event was added are not counted.
class Timeline : public QTableWidget
{
    Q_OBJECT

public:
    explicit Timeline(QWidget* parent = nullptr);

    /// Appends a row for an event. \a object is the name of the object to which the event belongs. \a event is a text
    /// that describes the event. \a tone determines the colour of this text.
    void Add(QString const& object, QString const& event, Tone tone = Tone::Neutral);

    /// Removes all events and restarts the numbering of the iterations.
    void Clear();

private:
    void EndIteration();

    int iteration_ = 0;
    bool isInIteration_ = false;
};

} // namespace Gallery
} // namespace Zelkor
