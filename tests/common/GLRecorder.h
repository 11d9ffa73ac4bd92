/// A GL between the helpers and the driver. It records each call, and then either passes it on or
/// answers it itself.
///
/// GLRecorder.cpp defines `glXGetProcAddress` and the entry points that the library links directly.
/// In a test program with it and the static library, all GL calls of the library come here.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace kestrix::test {

/// In an expected call: this argument can have any value.
inline constexpr double kAny = std::numeric_limits<double>::quiet_NaN();

/// A call, made or expected. All arguments are numbers. A double can hold all integers that the
/// helpers pass, floats, and the 48 bits of an address.
struct GLCall {
    std::string name;
    std::vector<double> arguments;

    bool operator==(const GLCall& other) const;
    const void* address(std::size_t argument) const
    {
        return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(arguments.at(argument)));
    }
};

std::ostream& operator<<(std::ostream& out, const GLCall& call);

/// An expected call, written like a call in code.
template<class... ARGUMENTS>
GLCall call(const char* name, ARGUMENTS... arguments)
{
    [[maybe_unused]] const auto number = [](auto argument) {
        if constexpr (std::is_null_pointer_v<decltype(argument)>)
            return 0.0;
        else if constexpr (std::is_pointer_v<decltype(argument)>)
            return static_cast<double>(reinterpret_cast<std::uintptr_t>(argument));
        else
            return static_cast<double>(argument);
    };
    return {name, {number(arguments)...}};
}

/// What the fake answers, and its state.
struct FakeGL {
    int majorVersion = 4;
    int minorVersion = 5;
    int maxTextureSize = 16384;
    const char* extensions = "";
    std::string doesNotBuild; // "vertex shader", "fragment shader", "program"
    int infoLogLength = 40;
    bool buffersMap = true;

    int unpackRowLength = 0;
    int textureEnvironmentMode = 0x2100; // GL_MODULATE
    /// Names made and not deleted, each with its kind. No two kinds share a name.
    std::map<unsigned, std::string> live;
    std::map<unsigned, unsigned> boundBuffers;
    std::map<unsigned, std::vector<std::uint8_t>> bufferBytes;

    unsigned make(const char* kind);
    /// The location of a uniform or an attribute: a fixed number for each name.
    static int location(const char* name);
    std::vector<unsigned> liveOf(const std::string& kind) const;
};

/// The one recorder of the process. GL thread only.
class GLRecorder {
public:
    static GLRecorder& get();

    /// Forgets everything. A new fake answers calls from now on. It needs no context.
    void useFake() { *this = GLRecorder(false); }
    /// Forgets everything and passes calls on to libGL. It needs a current context.
    void useDriver() { *this = GLRecorder(true); }

    /// Calls since the last `clear`, in order, look-ups excluded.
    const std::vector<GLCall>& calls() const { return m_calls; }
    /// Those of them to certain functions.
    std::vector<GLCall> callsTo(const std::set<std::string>& names) const;
    std::vector<std::string> callNames() const;
    /// Names that `glXGetProcAddress` was called with since the last `clear`.
    const std::vector<std::string>& lookups() const { return m_lookups; }
    void clear();

    /// Runs `observer` at each call to `name`, before the call is answered.
    void observe(const std::string& name, std::function<void(const GLCall&)> observer)
    {
        m_observers.emplace(name, std::move(observer));
    }

    /// Lets `function` answer calls to `name`, with the fake and with the driver.
    template<class FUNCTION>
    void replace(const std::string& name, FUNCTION* function)
    {
        m_replacements[name] = reinterpret_cast<void*>(function);
    }

    /// Lets one look-up after the last `clear` return null. The first one is number 0; with a
    /// negative number none fails.
    void failLookup(int number) { m_failingLookup = number; }

    FakeGL fake;

    // For the entry points only.
    void record(GLCall call);
    void* target(const char* name);
    void* lookUp(const char* name);

private:
    explicit GLRecorder(bool driver) : m_driver(driver) {}

    bool m_driver;
    int m_failingLookup = -1;
    std::vector<GLCall> m_calls;
    std::vector<std::string> m_lookups;
    std::multimap<std::string, std::function<void(const GLCall&)>> m_observers;
    std::map<std::string, void*> m_replacements;
};

/// The driver's own entry point. Calls to it are not recorded.
void* driverEntryPoint(const char* name);

/// The same with its type, as in `driverGL<decltype(glGetError)>("glGetError")`.
template<class FUNCTION>
FUNCTION* driverGL(const char* name)
{
    return reinterpret_cast<FUNCTION*>(driverEntryPoint(name));
}

} // namespace kestrix::test
