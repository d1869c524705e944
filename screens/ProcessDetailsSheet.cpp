#include "ProcessDetailsSheet.h"

#include "FontTable.h"
#include "Formatting.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QVBoxLayout>

#include <csignal>

namespace {
constexpr qreal PanelAlpha = 0.4;
constexpr qreal CornerRadius = 10;
constexpr int SwipeBack = 60; // points to the right
// UIKit's orange, as the pages' CPU figure.
const QColor Orange = QColor::fromRgbF(1.0f, 0.5f, 0.0f);

const char *stateName(char state)
{
    switch (state) {
    case 'R':
        return "running";
    case 'S':
        return "sleeping";
    case 'D':
        return "waiting for disk";
    case 'Z':
        return "zombie";
    case 'T':
    case 't':
        return "stopped";
    case 'I':
        return "idle";
    default:
        return "unknown";
    }
}

QString bytes(const std::optional<quint64> &value)
{
    return value ? Formatting::byteToKiloMegaGigaWithByte(double(*value), 1, false) : QStringLiteral("-");
}

QPushButton *button(const QString &text, QWidget *parent)
{
    auto *pushButton = new QPushButton(text, parent);
    pushButton->setFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 13));
    // The keys belong to the sheet: Enter confirms, whatever was clicked last.
    pushButton->setFocusPolicy(Qt::NoFocus);
    pushButton->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(0, 0, 0, 40%); "
                                             "border: 1px solid rgba(255, 255, 255, 50%); border-radius: 6px; "
                                             "padding: 4px 8px; } QPushButton:disabled { color: gray; }"));
    return pushButton;
}
} // namespace

ProcessDetailsSheet::ProcessDetailsSheet(QWidget *parent, const QString &rootDir, ProcessSignaller::Seams seams)
    : QWidget(parent)
    , _detailsReader(rootDir)
    , _signaller(rootDir, std::move(seams))
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_NoSystemBackground);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(6);

    _back = button(QStringLiteral("\u2039 Back"), this);
    connect(_back, &QPushButton::clicked, this, &ProcessDetailsSheet::goBack);
    _title = new QLabel(this);
    _title->setFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 17));
    _title->setWordWrap(true);
    auto *top = new QHBoxLayout;
    top->addWidget(_back);
    top->addWidget(_title, 1);
    layout->addLayout(top);

    _figures = new QLabel(this);
    _figures->setFont(FontTable::font(QStringLiteral("CourierNewPS-BoldMT"), 12));
    _figures->setWordWrap(true);
    _figures->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(_figures, 1);

    _message = new QLabel(this);
    _message->setFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 13));
    _message->setWordWrap(true);
    layout->addWidget(_message);
    _question = new QLabel(this);
    _question->setFont(FontTable::font(QStringLiteral("Helvetica-Bold"), 13));
    _question->setWordWrap(true);
    layout->addWidget(_question);

    auto *actions = new QHBoxLayout;
    _end = button(QStringLiteral("End Process"), this);
    _kill = button(QStringLiteral("Kill Process"), this);
    _confirm = button(QString(), this);
    _cancel = button(QStringLiteral("Cancel"), this);
    connect(_end, &QPushButton::clicked, this, [this] { ask(SIGTERM); });
    connect(_kill, &QPushButton::clicked, this, [this] { ask(SIGKILL); });
    connect(_confirm, &QPushButton::clicked, this, &ProcessDetailsSheet::confirm);
    connect(_cancel, &QPushButton::clicked, this, &ProcessDetailsSheet::cancel);
    for (QPushButton *action : {_end, _kill, _cancel, _confirm})
        actions->addWidget(action);
    layout->addLayout(actions);

    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    setPalette(palette);
    _message->setStyleSheet(QStringLiteral("color: %1").arg(Orange.name()));

    _slide = new QPropertyAnimation(this, "pos", this);
    _slide->setDuration(SlideMs);
    connect(_slide, &QPropertyAnimation::finished, this, [this] {
        if (!_open)
            hide();
    });
    hide();
}

void ProcessDetailsSheet::setRestGeometry(const QRect &frame)
{
    _rest = frame;
    if (_open && _slide->state() != QAbstractAnimation::Running)
        setGeometry(frame);
    else
        resize(frame.size());
}

void ProcessDetailsSheet::open(const ProcessRecord &record)
{
    _record = record;
    _open = true;
    _exited = false;
    _asking = 0;
    _signaller.pin(record.pid.toInt(), record.processName, record.usage.startTicks, record.usage.kernelThread);
    setMessage(_signaller.refusal());
    _details = _detailsReader.details(record.pid.toInt());
    showFigures();
    updateControls();

    _slide->stop();
    setGeometry(_rest);
    _slide->setStartValue(QPoint(parentWidget() ? parentWidget()->width() : _rest.right(), _rest.y()));
    _slide->setEndValue(_rest.topLeft());
    raise();
    show();
    _slide->start();
    setFocus(Qt::OtherFocusReason);
}

void ProcessDetailsSheet::goBack()
{
    if (!_open)
        return;
    _open = false;
    _asking = 0;
    _signaller.release();
    _slide->stop();
    _slide->setStartValue(pos());
    _slide->setEndValue(QPoint(parentWidget() ? parentWidget()->width() : _rest.right(), _rest.y()));
    _slide->start();
    Q_EMIT wentBack();
}

void ProcessDetailsSheet::refresh(const std::optional<ProcessRecord> &record)
{
    if (!_open || _exited)
        return;
    if (!record) {
        // Its last figures stay, and it can no longer be signalled.
        _exited = true;
        _asking = 0;
        _signaller.release();
        setMessage(QStringLiteral("\u201c%1\u201d (pid %2) has exited.").arg(_record.processName, _record.pid));
    } else {
        _record = *record;
        _details = _detailsReader.details(record->pid.toInt());
    }
    showFigures();
    updateControls();
}

void ProcessDetailsSheet::ask(int signal)
{
    if (!_open || _exited || !_signaller.refusal().isEmpty())
        return;
    _asking = signal;
    updateControls();
}

void ProcessDetailsSheet::confirm()
{
    if (!_asking)
        return;
    const ProcessSignaller::Outcome outcome = _signaller.send(_asking);
    _asking = 0;
    setMessage(outcome.message);
    updateControls();
}

void ProcessDetailsSheet::cancel()
{
    _asking = 0;
    updateControls();
}

QString ProcessDetailsSheet::figuresText() const
{
    return _figures->text();
}

QString ProcessDetailsSheet::questionText() const
{
    return _asking ? _question->text() : QString();
}

QString ProcessDetailsSheet::messageText() const
{
    return _message->text();
}

void ProcessDetailsSheet::setMessage(const QString &text)
{
    _message->setText(text);
    _message->setVisible(!text.isEmpty());
}

void ProcessDetailsSheet::showFigures()
{
    const ProcessUsage &usage = _record.usage;
    _title->setText(_exited ? _record.processName + QStringLiteral(" (exited)") : _record.processName);
    const auto share = [](const std::optional<double> &value) {
        return value ? Formatting::print("%.1f%%", *value) : QStringLiteral("-");
    };
    const auto line = [](const char *label, const QString &value) { return Formatting::print("%-8s ", label) + value; };
    QStringList lines;
    lines << line("PID", _record.pid) << line("Parent", QString::number(usage.parentPid))
          << line("State",
                  QStringLiteral("%1 (%2)")
                      .arg(QLatin1Char(usage.state ? usage.state : '?'))
                      .arg(QLatin1String(stateName(usage.state))))
          << line("User", _details.user.isEmpty() ? QStringLiteral("-") : _details.user)
          << line("CPU",
                  share(usage.cpuOfOneCore) + QStringLiteral(" of a CPU, ") + share(usage.cpuOfMachine)
                      + QStringLiteral(" of all"))
          << line("Memory",
                  QStringLiteral("RSS ") + bytes(usage.residentBytes) + QStringLiteral(", PSS ")
                      + bytes(_details.proportionalBytes))
          << line("Threads", QString::number(usage.threads)) << line("Started", _record.startTime)
          << line("Unit", _details.unit.isEmpty() ? QStringLiteral("-") : _details.unit)
          << line("Program", _details.executable.isEmpty() ? QStringLiteral("-") : _details.executable)
          << line("Command", _details.commandLine.isEmpty() ? QStringLiteral("-") : _details.commandLine);
    _figures->setText(lines.join(u'\n'));
}

void ProcessDetailsSheet::updateControls()
{
    const bool offered = _open && !_exited && _signaller.refusal().isEmpty();
    _end->setVisible(offered && !_asking);
    _kill->setVisible(offered && !_asking);
    _confirm->setVisible(_asking != 0);
    _cancel->setVisible(_asking != 0);
    _question->setVisible(_asking != 0);
    if (_asking) {
        const bool kill = _asking == SIGKILL;
        _question->setText(QStringLiteral("%1 \u201c%2\u201d (pid %3)?%4")
                               .arg(kill ? QStringLiteral("Kill") : QStringLiteral("End"), _record.processName,
                                    _record.pid,
                                    kill ? QStringLiteral(" It gets no chance to save its work.") : QString()));
        _confirm->setText(kill ? QStringLiteral("Kill") : QStringLiteral("End"));
    }
}

bool ProcessDetailsSheet::handleKey(QKeyEvent *event)
{
    if (!_open)
        return false;
    switch (event->key()) {
    case Qt::Key_Escape:
        if (_asking)
            cancel();
        else
            goBack();
        return true;
    case Qt::Key_Delete:
        ask(event->modifiers() & Qt::ShiftModifier ? SIGKILL : SIGTERM);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        confirm();
        return true;
    default:
        return false;
    }
}

void ProcessDetailsSheet::paintEvent(QPaintEvent *)
{
    // The pages' own panel: black at 0.4, rounded, over the list it hides.
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor fill(Qt::black);
    fill.setAlphaF(PanelAlpha);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()), CornerRadius, CornerRadius);
}

void ProcessDetailsSheet::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(event))
        QWidget::keyPressEvent(event);
}

void ProcessDetailsSheet::mousePressEvent(QMouseEvent *event)
{
    _pressedAt = event->position().toPoint();
}

void ProcessDetailsSheet::mouseReleaseEvent(QMouseEvent *event)
{
    const QPoint moved = event->position().toPoint() - _pressedAt;
    if (moved.x() > SwipeBack && std::abs(moved.y()) < moved.x())
        goBack();
}
