#include "ViewsLogging.h"

Q_LOGGING_CATEGORY(lcViews, "kovar.views")
