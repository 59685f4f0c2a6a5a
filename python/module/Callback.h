// Functions of the program that the library calls.
#pragma once

#include <memory>
#include <pybind11/pybind11.h>

namespace OrvanePython {

// A function of Python that C++ may copy, destroy and call on any thread, without the GIL. Copies share it.
class Callback {
public:
    // With the GIL.
    explicit Callback(pybind11::function function);

    // Calls it with what `arguments()` makes, which has the GIL. What it raises is thrown.
    template <class Arguments>
    void call(const Arguments& arguments) const {
        const pybind11::gil_scoped_acquire gil;
        const Mark mark;
        (*function_)(*arguments());
    }
    // The same, with what it returns as a value of C++. Throws pybind11::cast_error for another type.
    template <class Result, class Arguments>
    Result callFor(const Arguments& arguments) const {
        const pybind11::gil_scoped_acquire gil;
        const Mark mark;
        return pybind11::cast<Result>((*function_)(*arguments()));
    }
    // The same as call(); what it raises is told to sys.unraisablehook.
    template <class Arguments>
    void callOrReport(const Arguments& arguments) const {
        const pybind11::gil_scoped_acquire gil;
        try {
            call(arguments);
        } catch (pybind11::error_already_set& raised) {
            raised.discard_as_unraisable(*function_);
        }
    }

    // Whether this thread is in such a call: it may be a rack's own, which must not wait for its own end.
    static bool running() noexcept;

private:
    struct Mark {
        Mark() noexcept;
        ~Mark();
        Mark(const Mark&) = delete;
        Mark& operator=(const Mark&) = delete;
    };

    std::shared_ptr<pybind11::function> function_;
};

} // namespace OrvanePython
