#include "BannerKinds.h"

#include <QHash>

#include <mutex>

namespace {

std::mutex &kindsLock()
{
    static std::mutex lock;
    return lock;
}

QHash<QString, BannerKinds::Factory> &kinds()
{
    static QHash<QString, BannerKinds::Factory> table;
    return table;
}

} // namespace

void BannerKinds::add(const QString &name, Factory factory)
{
    std::lock_guard guard(kindsLock());
    kinds().insert(name, std::move(factory));
}

void BannerKinds::remove(const QString &name)
{
    std::lock_guard guard(kindsLock());
    kinds().remove(name);
}

BannerKinds::Factory BannerKinds::find(const QString &name)
{
    std::lock_guard guard(kindsLock());
    return kinds().value(name);
}
