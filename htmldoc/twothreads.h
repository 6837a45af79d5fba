// Work on a whole large text split over the machine's two cores: a load copies the text and
// finds its lines in two halves at once. Both halves end before the call returns, so nothing
// outside the call ever sees a second thread.
#pragma once
#include <cstddef>
#include <exception>
#include <system_error>
#include <thread>

// Texts from this many bytes on are split: below it a thread costs more than it saves.
constexpr size_t kTwoThreadBytes = size_t{4} << 20;

// Runs `front` on this thread and `back` on a second one, and returns once both are done. With
// no second thread to be had both run here. An exception of `back` is thrown again here, after
// `front` is done.
template <class Front, class Back>
void RunOnTwoThreads(Front&& front, Back&& back) {
    std::exception_ptr backFailure;
    std::thread thread;
    try {
        thread = std::thread([&back, &backFailure] {
            try {
                back();
            } catch (...) {
                backFailure = std::current_exception();
            }
        });
    } catch (const std::system_error&) {
        front();
        back();
        return;
    }
    try {
        front();
    } catch (...) {
        thread.join();
        throw;
    }
    thread.join();
    if (backFailure) std::rethrow_exception(backFailure);
}
