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

    /// Appends a row for the event \a event of the object with the name \a object. The colour of the event's text is
    /// the colour of \a tone.
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
