#pragma once

// Size of the file system holding the home directory, in bytes; 0.0 when unknown.
struct DiskUsageData {
    double totalSize = 0.0;
    double freeSize = 0.0;
};
