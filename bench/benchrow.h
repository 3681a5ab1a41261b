#pragma once
// One line of the bench's summary: a figure of ours beside its anchor, measured in the same run,
// and their ratio. Printed at once, and appended to $FENWORK_BENCH_SUMMARY when set, so that
// bench/run.sh can show every row in one table at the end.
#include <QFile>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace fenwork::bench {

inline double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

inline void row(const QString &measure, double ours, const QString &unit, const QString &anchor,
    double anchorValue, const QString &goal)
{
    const double ratio = anchorValue > 0 ? ours / anchorValue : 0;
    const QString line = QStringLiteral("%1 | %2 %3 | %4 | %5 %3 | %6 | %7")
                             .arg(measure, -44)
                             .arg(ours, 8, 'f', unit == u"ms" ? 2 : 1)
                             .arg(unit)
                             .arg(anchor, -34)
                             .arg(anchorValue, 8, 'f', unit == u"ms" ? 2 : 1)
                             .arg(ratio, 6, 'f', 2)
                             .arg(goal);
    std::printf("  %s\n", qPrintable(line));
    std::fflush(stdout);
    const QByteArray summary = qgetenv("FENWORK_BENCH_SUMMARY");
    if (summary.isEmpty())
        return;
    QFile file(QString::fromLocal8Bit(summary));
    if (file.open(QIODevice::Append | QIODevice::Text))
        file.write(line.toUtf8() + '\n');
}

} // namespace fenwork::bench
