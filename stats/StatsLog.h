#pragma once

#include <QLoggingCategory>

// Log lines of the statistics core ("kovar.stats"); failures of a query are only logged.
Q_DECLARE_LOGGING_CATEGORY(lcStats)
