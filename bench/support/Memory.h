#pragma once

namespace gravlin::bench {

/// The most memory that the process has held since the object was made, beyond what it held then.
/// Only one at a time: each starts the system's account anew.
class PeakMemory {
 public:
  PeakMemory();
  double bytes() const;

 private:
  double kilobytesBefore;
};

}  // namespace gravlin::bench
