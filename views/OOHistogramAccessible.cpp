#include "OOHistogramAccessible.h"

#include "OOHistogramView.h"

#include <algorithm>
#include <cmath>

namespace {

int percent(double part, double whole)
{
    return whole > 0 ? int(std::lround(part / whole * 100.0)) : 0;
}

QString span(qsizetype samples, int intervalMs)
{
    if (intervalMs <= 0)
        return samples == 1 ? QStringLiteral("last sample") : QStringLiteral("last %1 samples").arg(samples);
    return QStringLiteral("last ") + OOHistogramAccessible::duration(double(samples) * intervalMs / 1000.0);
}

} // namespace

OOHistogramAccessible::OOHistogramAccessible(QWidget *histogram)
    : QAccessibleWidget(histogram, QAccessible::Chart)
{
}

QString OOHistogramAccessible::duration(double seconds)
{
    // Under a minute and a half the seconds matter; beyond, whole minutes read better.
    if (seconds < 90)
        return QStringLiteral("%1 s").arg(std::lround(seconds));
    const long minutes = std::lround(seconds / 60.0);
    return minutes == 1 ? QStringLiteral("1 minute") : QStringLiteral("%1 minutes").arg(minutes);
}

QString OOHistogramAccessible::text(QAccessible::Text t) const
{
    if (t != QAccessible::Name)
        return QAccessibleWidget::text(t);
    const auto *view = static_cast<const OOHistogramView *>(widget());
    QString name = widget()->accessibleName();
    if (name.isEmpty())
        name = QStringLiteral("History");

    const QList<HistogramItem> &items = view->itemData();
    const qsizetype shown = std::min<qsizetype>(items.size(), view->visibleColumns());
    if (shown <= 0)
        return name + QStringLiteral(": no samples yet");

    // Averages weigh each sample by its ticks, which is the share of the whole span.
    double user = 0, system = 0, idle = 0;
    double peak = -1;
    qsizetype peakAge = 0;
    for (qsizetype i = items.size() - shown; i < items.size(); ++i) {
        const HistogramItem &item = items.at(i);
        user += item.user();
        system += item.system();
        idle += item.idle();
        const double sum = double(item.user()) + item.system() + item.idle();
        const double busy = sum > 0 ? (double(item.user()) + item.system()) / sum : 0;
        // Ties go to the newest sample: the freshest peak is the one worth telling.
        if (busy >= peak) {
            peak = busy;
            peakAge = items.size() - 1 - i;
        }
    }
    const double total = user + system + idle;
    QString when;
    if (peakAge == 0)
        when = QStringLiteral("now");
    else if (view->sampleInterval() > 0)
        when = duration(double(peakAge) * view->sampleInterval() / 1000.0) + QStringLiteral(" ago");
    else
        when = peakAge == 1 ? QStringLiteral("1 sample ago") : QStringLiteral("%1 samples ago").arg(peakAge);
    return QStringLiteral("%1, %2: user %3%, system %4%, idle %5%; peak %6% busy %7")
        .arg(name, span(shown, view->sampleInterval()))
        .arg(percent(user, total))
        .arg(percent(system, total))
        .arg(percent(idle, total))
        .arg(int(std::lround(peak * 100.0)))
        .arg(when);
}
