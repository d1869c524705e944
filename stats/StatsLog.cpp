#include "StatsLog.h"

Q_LOGGING_CATEGORY(lcStats, "kovar.stats")
