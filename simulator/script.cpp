#include "script.h"

#include "text.h"

namespace simulator {

namespace {

constexpr uint32_t LONGEST_DELAY = 600000;
constexpr uint32_t LARGEST_FILLER = 16 * 1024 * 1024;

// A line end in a stored version would make lines of its own in adapters.txt; a NUL would hide the rest.
constexpr std::string_view VERSION_STOPS("\r\n\0", 3);

// The field that an option's value is stored in: exactly one of the three is set.
struct Destination {
    bool Script::*flag = nullptr;
    std::optional<std::string> Script::*text = nullptr;
    std::optional<uint32_t> Script::*number = nullptr;
    uint32_t limit = 0;  // of the number
};

struct Option {
    std::string_view spelling;  // the name up to an equals sign
    unsigned uses;
    Destination to;
    std::string_view meaning;
};

constexpr unsigned FOR_BOTH = FOR_DOWNLOAD | FOR_LISTING;

// clang-format off
constexpr Option knownOptions[] = {
    {"exit=N", FOR_BOTH, {.number = &Script::exitStatus, .limit = UINT32_MAX},
        "exit status, up to 4294967295 (-1); Linux passes on the low 8 bits"},
    {"delay=N", FOR_BOTH, {.number = &Script::delay, .limit = LONGEST_DELAY},
        "wait N milliseconds first, up to 600000"},
    {"crash", FOR_BOTH, {.flag = &Script::crash},
        "end as by a crash; nothing is printed, nothing is changed"},
    {"crash-after", FOR_BOTH, {.flag = &Script::crashAfter},
        "end as by a crash after everything is done and printed"},
    {"fill=N", FOR_BOTH, {.number = &Script::fill, .limit = LARGEST_FILLER},
        "print N bytes of filler lines before the output, up to 16777216"},
    {"fill-after=N", FOR_BOTH, {.number = &Script::fillAfter, .limit = LARGEST_FILLER},
        "print N bytes of filler lines after it"},
    {"cut=N", FOR_LISTING, {.number = &Script::cut, .limit = UINT32_MAX},
        "stop the listing after its first N bytes; cut=0 prints nothing"},
    {"reply=\"TEXT\"", FOR_DOWNLOAD, {.text = &Script::reply},
        "print TEXT and a line end; reply=\"\" prints nothing at all"},
    {"no-line-end", FOR_DOWNLOAD, {.flag = &Script::noLineEnd},
        "omit the line end after the reply"},
    {"version=TEXT", FOR_DOWNLOAD, {.text = &Script::version},
        "store TEXT as FW Version, whatever the image says"},
    {"lie", FOR_DOWNLOAD, {.flag = &Script::lie},
        "reply \"NO Error\", but change nothing"},
};
// clang-format on

// The character after a backslash in a quoted text, and the character that the pair means.
struct Escape {
    char written;
    char meant;
};

constexpr Escape escapes[] = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'0', '\0'}, {'\\', '\\'}, {'"', '"'}};

// An option as it is written in the line. A missing value differs from an empty one.
struct Token {
    std::string_view name;
    std::optional<std::string> value;
};

}  // namespace

static bool appendEscape(char written, std::string& text) {
    for (const Escape& escape : escapes) {
        if (escape.written != written) {
            continue;
        }
        text += escape.meant;
        return true;
    }
    return false;
}

// Removes a quoted text from the start of the rest, which begins after the opening quotation mark.
static bool cutQuoted(std::string_view& rest, std::string& text, std::string& message) {
    size_t at = 0;
    for (; at < rest.size() && rest[at] != '"'; at++) {
        if (rest[at] != '\\') {
            text += rest[at];
            continue;
        }
        at++;
        if (at == rest.size() || !appendEscape(rest[at], text)) {
            return refuse(message, {"only n r t 0 \\ \" may follow a backslash"});
        }
    }
    if (at == rest.size()) {
        return refuse(message, {"the quotation mark at the end of a text is missing"});
    }
    rest.remove_prefix(at + 1);
    if (!rest.empty() && !trim(rest.substr(0, 1)).empty()) {
        return refuse(message, {"a blank is missing after a quoted text"});
    }
    return true;
}

static std::string_view cutUpTo(std::string_view& rest, std::string_view stops) {
    std::string_view start = rest.substr(0, rest.find_first_of(stops));
    rest.remove_prefix(start.size());
    return start;
}

static bool readToken(std::string_view& rest, Token& token, std::string& message) {
    token.name = cutUpTo(rest, " \t=");
    token.value.reset();
    if (!rest.starts_with('=')) {
        return true;
    }
    rest.remove_prefix(1);
    token.value.emplace();
    if (!rest.starts_with('"')) {
        *token.value = cutUpTo(rest, " \t");
        return true;
    }
    rest.remove_prefix(1);
    return cutQuoted(rest, *token.value, message);
}

static std::string_view nameOf(const Option& option) {
    return option.spelling.substr(0, option.spelling.find('='));
}

static const Option* findOption(std::string_view name, ScriptUse use) {
    for (const Option& option : knownOptions) {
        if (nameOf(option) == name && (option.uses & use) != 0) {
            return &option;
        }
    }
    return nullptr;
}

static bool storeNumber(const Option& option, const Token& token, Script& script, std::string& message) {
    script.*option.to.number = readNumber(*token.value, 10, option.to.limit);
    return (script.*option.to.number).has_value() ||
           refuse(message,
                  {"the value of '", nameOf(option), "' is not a number from 0 to ", std::to_string(option.to.limit)});
}

static bool storeText(const Option& option, const Token& token, Script& script, std::string& message) {
    bool isVersion = option.to.text == &Script::version;
    if (isVersion && token.value->find_first_of(VERSION_STOPS) != std::string::npos) {
        return refuse(message, {"a version cannot hold a line end or a NUL"});
    }
    script.*option.to.text = *token.value;
    return true;
}

static bool storeToken(const Token& token, ScriptUse use, Script& script, std::string& message) {
    const Option* option = findOption(token.name, use);
    if (option == nullptr) {
        return refuse(message, {"'", token.name, "' is not an option of this line"});
    }
    if ((option->to.flag == nullptr) != token.value.has_value()) {
        return refuse(message, {"this option is written ", option->spelling});
    }
    if (option->to.number != nullptr) {
        return storeNumber(*option, token, script, message);
    }
    if (option->to.text != nullptr) {
        return storeText(*option, token, script, message);
    }
    script.*option->to.flag = true;
    return true;
}

bool readScript(std::string_view options, ScriptUse use, Script& script, std::string& message) {
    std::string_view rest = trim(options);
    Token token;
    while (!rest.empty()) {
        if (!readToken(rest, token, message) || !storeToken(token, use, script, message)) {
            return false;
        }
        rest = trim(rest);
    }
    return true;
}

std::string describeOptions(ScriptUse use) {
    constexpr size_t INDENT = 8;
    constexpr size_t SPELLING_WIDTH = 16;
    std::string help;
    for (const Option& option : knownOptions) {
        if ((option.uses & use) == 0) {
            continue;
        }
        help.append(INDENT, ' ').append(option.spelling);
        help.append(SPELLING_WIDTH - option.spelling.size(), ' ').append(option.meaning).append("\n");
    }
    return help;
}

std::string makeFiller(size_t size) {
    constexpr size_t LINE_SIZE = 64;
    std::string filler(size, '.');
    for (size_t at = LINE_SIZE - 1; at < size; at += LINE_SIZE) {
        filler[at] = '\n';
    }
    if (!filler.empty()) {
        filler.back() = '\n';
    }
    return filler;
}

}  // namespace simulator
