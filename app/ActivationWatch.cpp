#include "ActivationWatch.h"

#include <QGuiApplication>
#include <QTimer>

namespace ActivationWatch {

void onEveryActivation(QObject *context, std::function<void()> action)
{
    auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!application)
        return;
    QObject::connect(application, &QGuiApplication::applicationStateChanged, context,
                     [action](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             action();
                     });
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        QTimer::singleShot(0, context, action);
}

} // namespace ActivationWatch
