#include "portability/SyncManager.h"
