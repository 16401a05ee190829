#pragma once

#include <functional>
#include <memory>
#include <string>

class Window;

/// How the program's handlers run inside the toolkit. A handler that fails must not unwind through the toolkit's
/// frames: its failure is caught where the event was delivered and kept. If the handler ran nested in a yield, the
/// yield throws it again in the loop that yielded; if nothing lies underneath, the event loop reports it and the
/// program ends with exit code 1.
namespace events {

/// Runs a handler of a control, menu or window; while a Postponement lives, after it.
void run(const std::function<void()>& handler);

/// As long as one lives, handlers wait. They run when events are handled next.
class Postponement {
  public:
    Postponement();
    ~Postponement();
    Postponement(const Postponement&) = delete;
    Postponement& operator=(const Postponement&) = delete;
};

/// Whether a handler waits for the end of a Postponement, or for events to be handled after it.
bool anythingWaits();

/// Throws a failure that a nested handler left behind, if there is one.
void rethrowPending();

/// Takes over a closed window and destroys it once no handler is on the stack, which may be one of its own.
void retire(std::unique_ptr<Window> window);

/// Called with the failure that no loop took; reports it and ends the program.
void setFailureReporter(std::function<void(const std::string& message)> reporter);

/// Called when no handler is on the stack any more and closed windows are gone.
void setIdleObserver(std::function<void()> observer);

/// Forgets a failure that waits to be thrown again and destroys closed windows; for the end of the program.
void clear();

}  // namespace events
