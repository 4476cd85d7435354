# Makes the C++ source of the page:
#     cmake -D DIRECTORY=... -D STYLES=a.css,b.css -D SCRIPTS=a.js,b.js -D OUTPUT=... -P embed.cmake
# The script and the style are allowed by their hashes and nothing else is, so that no text of a report can become one.

# The source expression of a Content Security Policy that allows exactly this text.
function(policy_hash result text)
    string(SHA256 digest "${text}")
    # Three hexadecimal digits are two of base64; two more fill the last group, and its last character is padding.
    string(APPEND digest "00")
    set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
    set(base64 "")
    foreach(start RANGE 0 63 3)
        string(SUBSTRING "${digest}" ${start} 3 digits)
        math(EXPR first "0x${digits} >> 6")
        math(EXPR second "0x${digits} & 63")
        string(SUBSTRING ${alphabet} ${first} 1 first)
        string(SUBSTRING ${alphabet} ${second} 1 second)
        string(APPEND base64 "${first}${second}")
    endforeach()
    string(SUBSTRING "${base64}" 0 43 base64)
    set(${result} "'sha256-${base64}='" PARENT_SCOPE)
endfunction()

# The content of several files of DIRECTORY, given as a.js,b.js.
function(read_parts result names)
    string(REPLACE "," ";" names "${names}")
    set(text "")
    foreach(name IN LISTS names)
        file(READ "${DIRECTORY}/${name}" part)
        string(APPEND text "${part}")
    endforeach()
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

file(READ "${DIRECTORY}/page.html" page)
read_parts(style "${STYLES}")
read_parts(script "${SCRIPTS}")

policy_hash(style_hash "${style}")
policy_hash(script_hash "${script}")
set(policy "default-src 'none'")
string(APPEND policy "; script-src ${script_hash}; style-src ${style_hash}; img-src data:")
string(APPEND policy "; base-uri 'none'; form-action 'none'")
string(REPLACE "@POLICY@" "${policy}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")

string(FIND "${page}" "@DATA@" place)
string(SUBSTRING "${page}" 0 ${place} before)
math(EXPR place "${place} + 6")
string(SUBSTRING "${page}" ${place} -1 after)
file(WRITE "${OUTPUT}" "#include \"page_template.h\"

std::string_view fleet::pageBeforeData()
{
    return R\"page(${before})page\";
}

std::string_view fleet::pageAfterData()
{
    return R\"page(${after})page\";
}
")
