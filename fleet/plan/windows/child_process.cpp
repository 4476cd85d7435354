#include "plan/child_process.h"

#include <algorithm>
#include <system_error>

#include <windows.h>

#include "text.h"

using namespace fleet;

namespace {

constexpr DWORD END_BY_FORCE = 0xFFFFFFFF;
constexpr DWORD FIRST_EXCEPTION_CODE = 0xC0000000;  // exit codes from here on are those of a crash
constexpr DWORD CLEANING_UP_MILLISECONDS = 10000;   // the system waits no longer for a console that is closed

HANDLE interruption = nullptr;  // an event, set by the user's interruption
HANDLE watchEnded = nullptr;    // an event, set when the cleaning up is done

}  // namespace

// Runs in a thread of its own. After a return for a closed console the system ends the process at once.
static BOOL WINAPI noteControl(DWORD type) {
    SetEvent(interruption);
    if (type != CTRL_C_EVENT && type != CTRL_BREAK_EVENT) {
        WaitForSingleObject(watchEnded, CLEANING_UP_MILLISECONDS);
    }
    return TRUE;
}

ProcessWatch::ProcessWatch() {
    interruption = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    watchEnded = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(noteControl, TRUE);
}

// The events are left to the end of the process, since the handler's thread may still wait for one.
ProcessWatch::~ProcessWatch() {
    SetEvent(watchEnded);
    SetConsoleCtrlHandler(noteControl, FALSE);
}

bool fleet::userInterrupted() {
    return WaitForSingleObject(interruption, 0) == WAIT_OBJECT_0;
}

// Quotes an argument as the C runtime of the child takes it apart: backslashes count only before a quotation mark.
static void appendArgument(std::wstring& line, const std::wstring& argument) {
    line += L" \"";
    size_t backslashes = 0;
    for (wchar_t c : argument) {
        if (c == L'"') {
            line.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

static std::wstring commandLineOf(const ChildOrder& order) {
    std::wstring line = L"\"" + order.program.native() + L"\"";
    for (const std::string& argument : order.arguments) {
        appendArgument(line, pathOf(argument).native());
    }
    return line;
}

static bool isNamed(std::wstring_view variable, const std::wstring& name) {
    return variable.size() > name.size() && variable[name.size()] == L'=' &&
           CompareStringOrdinal(variable.data(), static_cast<int>(name.size()), name.data(),
                                static_cast<int>(name.size()), TRUE) == CSTR_EQUAL;
}

// This process's variables with the order's in the place of those of the same name, each with a NUL, and one at the end.
static std::wstring environmentOf(const ChildOrder& order) {
    std::wstring block;
    std::vector<std::wstring> names;
    for (const auto& [name, value] : order.environment) {
        names.push_back(pathOf(name).native());
        block += names.back() + L"=" + pathOf(value).native() + L'\0';
    }
    wchar_t* own = GetEnvironmentStringsW();
    for (const wchar_t* at = own; at != nullptr && *at != L'\0';) {
        const std::wstring_view variable = at;
        at += variable.size() + 1;
        if (std::none_of(names.begin(), names.end(), [&](const auto& name) { return isNamed(variable, name); })) {
            block.append(variable).push_back(L'\0');
        }
    }
    FreeEnvironmentStringsW(own);
    return block + L'\0';
}

static HANDLE openInherited(const wchar_t* path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited = {
        .nLength = sizeof inherited, .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
    return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition, 0, nullptr);
}

// A job ends all of its processes when it is closed, so nothing outlives this process, however it ends.
static HANDLE makeJob() {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    HANDLE job = CreateJobObjectW(nullptr, nullptr);
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

// Starts suspended, so that nothing runs outside the job. Without a window: Ctrl+C does not reach it before us.
static DWORD startInJob(const ChildOrder& order, STARTUPINFOW& startup, Child& child) {
    std::wstring commandLine = commandLineOf(order);
    std::wstring environment = environmentOf(order);
    constexpr DWORD flags = CREATE_SUSPENDED | CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(order.program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, flags, environment.data(),
                        order.directory.c_str(), &startup, &process)) {
        return GetLastError();
    }
    HANDLE job = makeJob();
    if (!AssignProcessToJobObject(job, process.hProcess)) {
        const DWORD error = GetLastError();
        TerminateProcess(process.hProcess, END_BY_FORCE);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
        CloseHandle(job);
        return error;
    }
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);
    child = {.process = reinterpret_cast<intptr_t>(process.hProcess), .group = reinterpret_cast<intptr_t>(job)};
    return ERROR_SUCCESS;
}

bool fleet::startChild(const ChildOrder& order, Child& child, std::string& problem) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = openInherited(L"NUL", GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput = openInherited(order.output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = openInherited(order.errors.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    const bool opened = startup.hStdOutput != INVALID_HANDLE_VALUE && startup.hStdError != INVALID_HANDLE_VALUE;
    const DWORD error = opened ? startInJob(order, startup, child) : GetLastError();
    for (HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError}) {
        if (handle != INVALID_HANDLE_VALUE) {
            CloseHandle(handle);
        }
    }
    if (error != ERROR_SUCCESS) {
        problem = std::system_category().message(static_cast<int>(error));
        return false;
    }
    return true;
}

void fleet::waitForChildren(std::span<const Child> children, int milliseconds) {
    std::vector<HANDLE> handles = {interruption};
    for (const Child& child : children) {
        handles.push_back(reinterpret_cast<HANDLE>(child.process));
    }
    WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, static_cast<DWORD>(milliseconds));
}

static void closeChild(const Child& child) {
    CloseHandle(reinterpret_cast<HANDLE>(child.process));
    CloseHandle(reinterpret_cast<HANDLE>(child.group));
}

std::optional<ChildEnd> fleet::endOfChild(const Child& child) {
    HANDLE process = reinterpret_cast<HANDLE>(child.process);
    DWORD code = 0;
    if (WaitForSingleObject(process, 0) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    GetExitCodeProcess(process, &code);
    closeChild(child);
    if (code >= FIRST_EXCEPTION_CODE) {
        return ChildEnd{.violent = "exit code " + std::to_string(code)};
    }
    return ChildEnd{.code = static_cast<int>(code), .violent = {}};
}

void fleet::killChild(const Child& child) {
    TerminateJobObject(reinterpret_cast<HANDLE>(child.group), END_BY_FORCE);
    WaitForSingleObject(reinterpret_cast<HANDLE>(child.process), INFINITE);
    closeChild(child);
}
