#pragma once

// Whether a directory holds a workbench, and of which version.

#include <string>

/// Whether `directory` holds a workbench, that is, the file "install.properties". The directory is
/// taken as given; only the joined file name is normalised. Logs nothing.
bool is_wb_path(std::string directory);

/// Whether a word of the file `properties` contains `version_key`. Words are separated by blank,
/// tab, line feed, carriage return, vertical tab and form feed, and mean nothing beyond that.
/// Logs the key when it is found. False, and nothing logged, where the file cannot be read.
bool is_supported(std::string properties, std::string version_key);
