#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>

// The popover's arithmetic and formats, kept apart from the views so that every number a card
// draws comes from one tested place. The views only wire these to the hub's readings.
namespace quelmo::PopoverRules {

inline constexpr double popoverWidth = 320;
inline constexpr double initialContentHeight = 420;
inline constexpr double heightWithoutScreen = 740;
inline constexpr double minimumMaxHeight = 380;
inline constexpr double screenMargin = 60;

inline constexpr double barMinimumWidth = 3;
inline constexpr double processBarMinimumWidth = 2;
inline constexpr double coreMinimumScale = 0.02;

// A fraction as a whole percentage, halves away from zero: 0.5 -> "50%", 0.004 -> "0%". A value
// that is not a number reads "0%".
QString pct(double fraction);

// A byte count: "1.0GB" from 2^30 bytes on, below that whole megabytes ("1024MB").
QString mem(double bytes);

// The memory bar's detail: used and total in GB with one decimal, "12.0 / 16.0 GB".
QString memDetail(double usedBytes, double totalBytes);

// `value` with `decimals` decimals, as printf's "%.Nf" writes it.
QString fixed(double value, int decimals);

// The tallest the popover may be: the height of the screen's free area less 60, at least 380;
// 740 when there is no screen.
double maxHeight(std::optional<double> availableHeight);

// The popover is as tall as its content, up to `maxHeight`; beyond that it scrolls.
double popoverHeight(double contentHeight, double maxHeight);

// Width of a bar's filled part: the track's width times `value` clamped to 0...1, but never under
// 3 points (not-a-number draws those 3 points too), and never wider than the track.
double barFillWidth(double trackWidth, double value);

// Vertical scale of one core's bar: its load clamped to 0.02...1 (an idle core keeps a sliver).
double coreFillScale(double load);

// The per-core strip on `width` points: a bar of at least `minCoreWidth` per logical CPU, 3 apart
// while they fit so, else 1 apart, in as many rows as that takes.
inline constexpr double minCoreWidth = 2;
double coreSpacing(int cores, double width);
int coreColumns(int cores, double width);

// The largest of a process list's values (CPU percent or resident bytes): 1 for an empty list,
// never below 0.0001.
double processMaxValue(const QList<double>& values);

// Width of one process's bar: its share of `maxValue`, at least 2 points.
double processFillWidth(double trackWidth, double value, double maxValue);

// The stacked power bar's shares of CPU, GPU, Neural Engine and DRAM watts, left to right. Zero
// (or less) in total draws nothing rather than dividing by zero.
std::array<double, 4> powerShares(double cpu, double gpu, double ane, double dram);

// Where an endless loop that runs to 1 in `halfPeriodMs` and back stands after `elapsedMs`: 0 at
// the start, 1 after one half period, eased in and out both ways (the logo's breathing, the
// mascot's snipping). A half period of 0 or less stands still at 0.
double loopPhase(double elapsedMs, double halfPeriodMs);

// The collapsible sections, in order: "cpu", "memory", "cleanup".
QStringList sections();

// `expanded` with `section` removed when present, else added.
QStringList toggled(const QStringList& expanded, const QString& section);

} // namespace quelmo::PopoverRules
