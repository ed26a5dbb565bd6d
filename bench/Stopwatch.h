#ifndef bench_Stopwatch_h
#define bench_Stopwatch_h

#include <time.h>

namespace StnBench {

/// Sums up time while it runs: CPU time of the process, all threads together, and time on the wall. CPU time hardly
/// notices what else the machine does.
class Stopwatch {
 public:
  void Start() { Add(-1); }
  void Stop() { Add(1); }

  /// Sum so far, in seconds.
  double GetCpu() const { return fCpu; }
  double GetWall() const { return fWall; }

  /// What was summed up since `earlier`, a copy of this watch.
  Stopwatch operator-(const Stopwatch& earlier) const {
    Stopwatch difference = *this;
    difference.fCpu -= earlier.fCpu;
    difference.fWall -= earlier.fWall;
    return difference;
  }

  /// Runs the watch while `action` runs, and gives its result.
  template <class Action>
  auto Time(Action action) {
    struct Guard {
      explicit Guard(Stopwatch& watch) : fWatch(watch) { fWatch.Start(); }
      ~Guard() { fWatch.Stop(); }
      Stopwatch& fWatch;
    } guard(*this);
    return action();
  }

 private:
  static double Now(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
  }
  void Add(int sign) {
    fCpu += sign * Now(CLOCK_PROCESS_CPUTIME_ID);
    fWall += sign * Now(CLOCK_MONOTONIC);
  }

  double fCpu = 0;
  double fWall = 0;
};

}  // namespace StnBench

#endif
