// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace tessel::host {

/// A folder that only this user can look into, for what comes over the network. It goes with the program, also when
/// a signal ends that. There is one at a time.
class TemporaryFolder {
public:
  /// Makes the folder; `failure()` says why there is none.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& failure() const { return error; }
  /// Makes an empty file and opens it for writing; its path goes to `path`. -1 if that fails. Any thread may call.
  int newFile(std::string& path);

private:
  std::string error;
};

}  // namespace tessel::host
