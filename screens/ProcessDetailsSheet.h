#pragma once

#include "ProcessDetailsReader.h"
#include "ProcessRecord.h"
#include "ProcessSignaller.h"

#include <QWidget>

#include <optional>

class QLabel;
class QPushButton;
class QPropertyAnimation;

// The details of one process, slid in over a process list: what it costs, refreshed with
// every list, and End (SIGTERM) or Kill (SIGKILL) behind a confirmation that names it.
// Keys: Delete asks to end it, Shift+Delete to kill it, Enter confirms, Escape cancels the
// question or goes back; a swipe to the right goes back too. A process that exits while
// shown keeps its last figures and says so.
class ProcessDetailsSheet : public QWidget {
    Q_OBJECT
public:
    static constexpr int SlideMs = 200;

    // rootDir and seams: where the details are read and how signals are sent.
    explicit ProcessDetailsSheet(QWidget *parent, const QString &rootDir = QStringLiteral("/"),
                                 ProcessSignaller::Seams seams = ProcessSignaller::hostSeams());

    // Where the sheet rests when shown, in its parent.
    void setRestGeometry(const QRect &frame);
    // Slides in showing record's process, pinned as it was listed.
    void open(const ProcessRecord &record);
    // Slides out and lets the process go.
    void goBack();
    bool isOpen() const { return _open; }

    // The newest figures of the process shown; none when it is no longer listed.
    void refresh(const std::optional<ProcessRecord> &record);
    const ProcessRecord &record() const { return _record; }
    bool hasExited() const { return _exited; }

    // SIGTERM or SIGKILL: asks first; confirm() sends, cancel() takes the question back.
    void ask(int signal);
    void confirm();
    void cancel();
    bool isAsking() const { return _asking != 0; }

    // What the sheet says: its figures, the question asked, the last outcome or refusal.
    QString figuresText() const;
    QString questionText() const;
    QString messageText() const;

    bool handleKey(QKeyEvent *event);

Q_SIGNALS:
    void wentBack();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void showFigures();
    void updateControls();
    void setMessage(const QString &text);

    ProcessDetailsReader _detailsReader;
    ProcessSignaller _signaller;
    ProcessRecord _record;
    ProcessDetails _details;
    bool _open = false;
    bool _exited = false;
    int _asking = 0;
    QPoint _pressedAt;
    QRect _rest;
    QLabel *_title = nullptr;
    QLabel *_figures = nullptr;
    QLabel *_question = nullptr;
    QLabel *_message = nullptr;
    QPushButton *_back = nullptr;
    QPushButton *_end = nullptr;
    QPushButton *_kill = nullptr;
    QPushButton *_confirm = nullptr;
    QPushButton *_cancel = nullptr;
    QPropertyAnimation *_slide = nullptr;
};
