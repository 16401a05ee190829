#pragma once

#include <functional>
#include <memory>
#include <string>

class Window;

/// Runs the program's handlers inside the toolkit. An exception must not unwind through the toolkit's frames, so it is
/// caught where the event was delivered and kept. If the handler ran nested in a yield, the yield rethrows it in the
/// loop that yielded. Otherwise the event loop reports it and the program ends with exit code 1.
namespace events {

/// Runs a handler of a control, menu or window. While a Postponement exists, the handler is postponed until it ends.
void run(const std::function<void()>& handler);

/// Postpones handlers as long as it exists. They run when events are processed next.
class Postponement {
  public:
    Postponement();
    ~Postponement();
    Postponement(const Postponement&) = delete;
    Postponement& operator=(const Postponement&) = delete;
};

/// Returns whether a handler has been postponed and has not run yet.
bool anythingWaits();

/// Rethrows the exception of a nested handler, if there is one.
void rethrowPending();

/// Takes ownership of a closed window and destroys it once no handler is on the stack; one of them may be its own.
void retire(std::unique_ptr<Window> window);

/// Sets the function that is called with the text of a failure that no loop caught.
void setFailureReporter(std::function<void(const std::string& message)> reporter);

/// Sets the function that is called when no handler is on the stack and closed windows have been destroyed.
void setIdleObserver(std::function<void()> observer);

/// Discards a pending exception and postponed handlers, and destroys closed windows. For the end of the program.
void clear();

}  // namespace events
