#include "TerminalReport.h"

#include "Terminal.h"
#include "Texts.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>

namespace Zelkor::Gallery
{
namespace
{

constexpr std::size_t MaxUnmeasured = 20;

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryReport)
};

// The name is the last column: the width of a name on the terminal is unknown, so a column to the right of the name
// could not be aligned.
enum Column { Size, Bytes, Time, Name, ColumnCount };
using Row = std::array<QString, ColumnCount>;

bool IsLarger(FolderEntry const& left, FolderEntry const& right)
{
    return left.size > right.size;
}

Row RowOf(FolderEntry const& entry)
{
    QString const none(QLatin1Char('-'));
    QString const state = StateText(entry);
    QString const name = state.isEmpty() ? NameText(entry) : Text::tr("%1  [%2]").arg(NameText(entry), state);
    if (entry.state != EntryState::Measured) {
        return {none, none, none, name};
    }
    return {SizeText(entry.size), QString::number(entry.size), TimeText(entry.microseconds), name};
}

QString TableText(std::vector<Row> const& rows)
{
    std::array<int, ColumnCount> widths{};
    for (Row const& row : rows) {
        for (std::size_t column = 0; column < Name; ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    QString text;
    for (Row const& row : rows) {
        for (std::size_t column = 0; column < Name; ++column) {
            text += row[column].rightJustified(widths[column]) + QLatin1String("  ");
        }
        text += row[Name] + QLatin1Char('\n');
    }
    return text;
}

std::vector<ioPath> UnmeasuredOf(std::vector<FolderEntry> const& entries)
{
    std::vector<ioPath> paths;
    for (FolderEntry const& entry : entries) {
        paths.insert(paths.end(), entry.unmeasured.begin(), entry.unmeasured.end());
    }
    return paths;
}

} // namespace

QString ReportText(std::vector<FolderEntry> entries, FolderTotals const& totals)
{
    std::stable_sort(entries.begin(), entries.end(), IsLarger);
    std::vector<Row> rows{{Text::tr("Size"), Text::tr("Bytes"), Text::tr("Time"), Text::tr("Name")}};
    std::transform(entries.begin(), entries.end(), std::back_inserter(rows), RowOf);
    rows.push_back({SizeText(totals.size), QString::number(totals.size), TimeText(totals.microseconds),
                    Text::tr("Total of %1").arg(EntriesText(totals.entries))});

    QString text = TableText(rows);
    std::vector<ioPath> const unmeasured = UnmeasuredOf(entries);
    if (!unmeasured.empty()) {
        QString list = PathListText(unmeasured, MaxUnmeasured);
        list.replace(QLatin1Char('\n'), QLatin1String("\n  "));
        text += Text::tr("\n%1:\n  %2\n").arg(UnmeasuredText(unmeasured.size()), list);
    }
    text.chop(1);
    return text;
}

int PrintReport(ioPath const& folder)
{
    FolderMeasurer measurer;
    ProgressLine progress;
    std::vector<FolderEntry> entries;
    int done = 0;

    QObject::connect(&measurer, &FolderMeasurer::Listed, [&](auto const& listed) { entries = listed; });
    QObject::connect(&measurer, &FolderMeasurer::EntryStarted, [&](int row) {
        progress.Show(done, static_cast<int>(entries.size()), NameText(entries[static_cast<std::size_t>(row)]));
    });
    QObject::connect(&measurer, &FolderMeasurer::EntryFinished, [&](int row, FolderEntry const& entry) {
        entries[static_cast<std::size_t>(row)] = entry;
        progress.Show(++done, static_cast<int>(entries.size()), NameText(entry));
    });
    QObject::connect(&measurer, &FolderMeasurer::Finished, [&](FolderTotals const& totals) {
        progress.Clear();
        Print(ReportText(entries, totals));
        QCoreApplication::exit(EXIT_SUCCESS);
    });
    QObject::connect(&measurer, &FolderMeasurer::Failed, [&](QString const& message) {
        PrintError(message);
        QCoreApplication::exit(EXIT_FAILURE);
    });
    measurer.Start(folder);
    return QCoreApplication::exec();
}

} // namespace Zelkor::Gallery
