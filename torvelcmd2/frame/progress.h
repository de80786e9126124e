// Long work tells the host how far it is, and stops where the user wants it to.
#pragma once

#include <stdexcept>

#include "torvelcmd2/frame/host_binding.h"

namespace torvel {

/// The user wants the command to stop; the host takes back what it has changed.
class StoppedByUser : public std::runtime_error {
  public:
    StoppedByUser() : std::runtime_error("stopped") {}
};

/// The steps of one piece of work. A host without the service is told nothing, and stops nothing.
class ProgressSteps {
  public:
    explicit ProgressSteps(std::uint64_t total) : tell_(hostService(hostapi::progress)), total_(total) {}

    /// One more step is done; may be called for every object of a drawing. Throws StoppedByUser.
    void step() {
        constexpr std::uint64_t kStepsPerCall = 256;
        if (++done_ % kStepsPerCall == 0 && tell_ && !tell_(done_, total_)) throw StoppedByUser();
    }

  private:
    bool (*tell_)(std::uint64_t done, std::uint64_t total);
    std::uint64_t total_;
    std::uint64_t done_ = 0;
};

}  // namespace torvel
