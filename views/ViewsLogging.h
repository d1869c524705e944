#pragma once

#include <QLoggingCategory>

// Log lines of the chart widgets ("#### ..." when a chart has nothing to show).
Q_DECLARE_LOGGING_CATEGORY(lcViews)
