// Cases as text: a file of calls with their results, and the C++ function for the name of each
// call. docs/testing.md describes the format.
//
//     struct World : CaseWorld {
//         XrFile file;
//         bool seek(int offset) { return file.Seek(offset); }
//     };
//     const Cases<World> cases("files/xr_file.cases",
//                                         {call("seek", "false", &World::seek)});
#ifndef UTIL_TESTS_SUPPORT_CASES_H
#define UTIL_TESTS_SUPPORT_CASES_H

#include "support/test.h"

namespace util_test {

// A line that cannot be read or played.
struct CaseError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What the calls of a block work on: new for each block.
struct CaseWorld {
    virtual ~CaseWorld() = default;
    std::map<std::string, std::string> values;  // what $name stands for
};

// Is called after the arguments of a call are converted, before the call.
inline void (*before_call)() = [] {};

// A call's name in case files, and its function.
struct Call {
    std::string name;
    std::size_t arguments;
    bool has_result;
    // The result after a fault, "..." for anything; several are separated by " | ". Empty if the
    // call does not fail.
    std::string failure;
    std::function<Words(CaseWorld& world, const Words& arguments)> make;

    // What the call never gives back, by design: so many of this resource if it succeeds. With an
    // event: if its result matches that pattern, or if that function of the platform fails.
    struct Kept {
        const char* resource;
        int number;
        std::string event;
    } kept = {"", 0, ""};
    Call keeps(int number, const char* resource, const char* event = "") && {
        kept = {resource, number, event};
        return std::move(*this);
    }
};

// One call of a block, about to be made.
struct Step {
    const Call& call;
    CaseWorld& world;
    Words arguments;
    Words expected;
    int line;

    // Makes the call. A std::exception is the result: raises "its text".
    Words make() const;
};

// Makes one call, or passes over it, and compares. False ends the block.
using Player = std::function<bool(const Step& step)>;

class CaseFile;

// What is below one title: calls on one world.
struct Block {
    struct Line {
        int number;
        std::vector<std::pair<const Call*, Words>> calls;  // with arguments as they are written
        std::vector<Words> results;                        // of the calls that have one
    };

    const CaseFile* file;
    std::string title;
    int line;
    bool plain = false;         // not for the failure sweep
    bool windows_only = false;  // not for the native tests
    std::vector<Line> lines;
    std::string error;  // why the block cannot be read

    // Makes the calls in order. Throws CaseError if a line cannot be played.
    void play(const Player& player) const;
};

class CaseFile {
  public:
    using NewWorld = std::function<std::unique_ptr<CaseWorld>()>;

    // Reads the file, whose name starts at the folder of the tests.
    CaseFile(const std::string& name, std::vector<Call> calls, NewWorld new_world);
    CaseFile(const CaseFile&) = delete;
    CaseFile& operator=(const CaseFile&) = delete;

    std::string path;
    std::string stem;
    std::vector<Block> blocks;
    std::vector<Call> calls;
    NewWorld new_world;
};

// Takes the cases of a suite: a test for each block, or a sweep. A program has one of the two.
void add_cases(const CaseFile& file);

// A value as it is written in a case file. Values of the world are written as $name.
std::string written(const Words& words, const CaseWorld& world);

// Whether actual results go into the case files: the variable UTIL_REWRITE_CASES is set.
bool rewriting();

// --- calls of any type ---

template <typename T>
T argument(const std::string& word) {
    if constexpr (std::is_same_v<T, bool>) {
        if (word != "true" && word != "false") throw CaseError("not a bool: " + word);
        return word == "true";
    } else if constexpr (std::is_same_v<T, char>) {
        if (word.size() != 1) throw CaseError("not a character: " + word);
        return word[0];
    } else if constexpr (std::is_integral_v<T>) {
        char* end = nullptr;
        const auto value = static_cast<T>(word[0] == '-' ? std::strtoll(word.c_str(), &end, 0)
                                                         : std::strtoull(word.c_str(), &end, 0));
        if (word.empty() || *end != '\0') throw CaseError("not a number: " + word);
        return value;
    } else if constexpr (std::is_same_v<T, const char*>) {
        return word == "$null" ? nullptr : word.c_str();
    } else {
        return T(word);
    }
}

template <typename T>
constexpr bool is_world = std::is_base_of_v<CaseWorld, std::remove_reference_t<T>>;

// An output of a call, such as String&.
template <typename T>
constexpr bool is_output =
    std::is_lvalue_reference_v<T> && !is_world<T> && !std::is_const_v<std::remove_reference_t<T>>;
template <typename T, bool = is_output<T>>
struct Output {};
template <typename T>
struct Output<T, true> {
    std::decay_t<T> value{"before"};
};

template <typename F>
struct Signature;
template <typename R, typename... A>
struct Signature<R (*)(A...)> {
    using Result = R;
    static constexpr std::size_t worlds = (0 + ... + is_world<A>);
    static constexpr std::size_t outputs = (0 + ... + is_output<A>);
    static constexpr std::size_t arguments = sizeof...(A) - worlds - outputs;
    using Places = std::index_sequence_for<A...>;

    template <typename T>
    using Passed = std::conditional_t<is_world<T> || is_output<T>, T, std::decay_t<T>>;
    template <typename T>
    static Passed<T> pass(CaseWorld& world, const Words& words, std::size_t place,
                          Output<T>& output) {
        if constexpr (is_world<T>) {
            return static_cast<T>(world);
        } else if constexpr (is_output<T>) {
            return output.value;
        } else {
            return argument<std::decay_t<T>>(words[place - worlds]);
        }
    }
    // What the function returns, then its outputs.
    template <typename F, std::size_t... place>
    static Words invoke(const F& function, CaseWorld& world, const Words& words,
                        std::index_sequence<place...>) {
        std::tuple<Output<A>...> values;
        std::tuple<Passed<A>...> passed(pass<A>(world, words, place, std::get<place>(values))...);
        before_call();
        Words all;
        if constexpr (std::is_void_v<R>) {
            std::apply(function, std::move(passed));
        } else {
            all = said(std::apply(function, std::move(passed)));
        }
        (say_output(all, std::get<place>(values)), ...);
        return all;
    }
    template <typename T>
    static void say_output(Words& words, const Output<T>& output) {
        if constexpr (is_output<T>) say(words, output.value);
    }
};

// A world is passed on by reference.
template <typename R, typename C, typename... A>
struct Signature<R (C::*)(A...)> : Signature<R (*)(std::conditional_t<is_world<C>, C&, C>, A...)> {
};
template <typename R, typename C, typename... A>
struct Signature<R (C::*)(A...) const> : Signature<R (*)(const C&, A...)> {};
// A lambda has the signature of its operator without the object.
template <typename F>
struct WithoutObject;
template <typename R, typename C, typename... A>
struct WithoutObject<R (C::*)(A...) const> : Signature<R (*)(A...)> {};
template <typename F>
struct Signature : WithoutObject<decltype(&F::operator())> {};

// The function is a member, a plain function or a lambda. Words become its typed arguments. A
// reference to the world is passed on. Outputs follow its result. They come after all arguments,
// and are "before" until they are set. A member of another class takes the object as a word.
template <typename F>
Call call(const char* name, const char* failure, F function) {
    using S = Signature<F>;
    static constexpr bool has_result = !std::is_void_v<typename S::Result> || S::outputs > 0;
    const auto make = [function](CaseWorld& world, const Words& words) {
        const Words result = S::invoke(function, world, words, typename S::Places());
        return has_result && result.empty() ? Words{"none"} : result;
    };
    return {name, S::arguments, has_result, failure, make};
}

template <typename F>
Call call(const char* name, F function) {
    return call(name, "", function);
}

// Registers the cases of a file. One object of a source file is enough.
template <typename World>
struct Cases {
    Cases(const char* name, std::vector<Call> calls)
        : file(name, std::move(calls), [] { return std::make_unique<World>(); }) {
        add_cases(file);
    }
    CaseFile file;
};

}  // namespace util_test

#endif
