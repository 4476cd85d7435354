#!/bin/sh
# Puts the reports of many servers into one document, for report.xsl.
# Usage: collect-reports.sh DIRECTORY >fleet.xml
#
# DIRECTORY holds a report NAME.xml of each server: what tarnlift.exe printed under /xml. NAME.code beside it, if it is
# there, holds the return code. A file that is no report, or a NAME.code alone, leaves its server without one, and a word
# on standard error.
# Write the document to another directory: in this one it would be taken for a server's report.
set -eu
export LC_ALL=C

if [ $# -ne 1 ] || [ ! -d "$1" ]; then
    echo "Usage: collect-reports.sh DIRECTORY >fleet.xml" >&2
    exit 2
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
cd -- "$1"

cat >"$work/fleet.xsl" <<'XSL'
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output encoding="UTF-8"/>
  <xsl:param name="collected"/>
  <xsl:template match="/servers">
    <xsl:processing-instruction name="xml-stylesheet">type="text/xsl" href="report.xsl"</xsl:processing-instruction>
    <xsl:text>&#10;</xsl:text>
    <Fleet Collected="{$collected}">
      <xsl:for-each select="server">
        <xsl:variable name="report" select="document(@report)/*[self::Execution or self::Inventory]"/>
        <xsl:if test="not($report)">
          <xsl:message>collect-reports: <xsl:value-of select="@name"/>: no report</xsl:message>
        </xsl:if>
        <xsl:text>&#10;</xsl:text>
        <Server Name="{@name}">
          <xsl:if test="@code"><xsl:attribute name="ReturnCode"><xsl:value-of select="@code"/></xsl:attribute></xsl:if>
          <xsl:copy-of select="$report"/>
        </Server>
      </xsl:for-each>
      <xsl:text>&#10;</xsl:text>
    </Fleet>
  </xsl:template>
</xsl:stylesheet>
XSL

newline='
'
return=$(printf '\r')
utf8_mark=$(printf '\357\273\277')
utf16_mark=$(printf '\377\376')

# The first line of a file without its line end. `read` leaves out the zero bytes of UTF-16, into which PowerShell's
# redirection turns what a program prints.
first_line() {
    line=
    IFS= read -r line <"$1" || true
    line=${line%"$return"}
}

# Three lines for each server: the name, the report's path, the return code.
list_servers() {
    number=0
    for file in *.xml *.code; do
        name=${file%.*}
        if [ ! -f "./$file" ] || [ ! -r "./$file" ] || { [ "$file" = "$name.code" ] && [ -r "./$name.xml" ]; }; then
            continue
        fi
        report=$PWD/$name.xml
        first_line "./$file"
        case $line in
        "$utf16_mark"*)
            number=$((number + 1))
            report=$work/$number.xml
            iconv -f UTF-16 -t UTF-8 "./$file" >"$report" 2>/dev/null || : >"$report"
            ;;
        esac
        line=
        if [ -r "./$name.code" ]; then
            first_line "./$name.code"
            line=${line#"$utf8_mark"}
            line=${line#"$utf16_mark"}
        fi
        case $name$PWD in
        *"$newline"*) echo "collect-reports: a name with a line end is passed by" >&2 ;;
        *) printf '%s\n' "$name" "$report" "$line" ;;
        esac
    done
}

# The list as a document. A report has to begin with the program's own declaration: it is UTF-8 then, so that a
# document type, through which a file could draw other files in, is seen here, and is no report.
list_servers | awk -v prolog='<?xml version="1.0" encoding="UTF-8"?>' -v utf8_mark="$utf8_mark" '
    function is_report(path,    line, first, good) {
        first = 1
        while ((getline line <path) > 0) {
            if (first) {
                good = index(line, prolog) == 1 || index(line, utf8_mark prolog) == 1
                first = 0
            }
            if (index(line, "<!DOCTYPE")) {
                good = 0
            }
        }
        close(path)
        return good
    }
    function address(path,    i, result) {
        for (i = 1; i <= length(path); i++) {
            result = result encoded[substr(path, i, 1)]
        }
        return result
    }
    function escaped(text) {
        gsub(/&/, "\\&amp;", text)
        gsub(/</, "\\&lt;", text)
        gsub(/"/, "\\&quot;", text)
        gsub(/[\001-\037]|\357\277[\276\277]/, "?", text)
        return text
    }
    BEGIN {
        for (i = 1; i < 256; i++) {
            character = sprintf("%c", i)
            encoded[character] = character ~ /[A-Za-z0-9\/._-]/ ? character : sprintf("%%%02X", i)
        }
        print prolog "<servers>"
    }
    NR % 3 == 1 { name = $0 }
    NR % 3 == 2 { report = $0 }
    NR % 3 == 0 {
        sub(/[ \t]+$/, "")
        printf "<server name=\"%s\"", escaped(name)
        if (is_report(report)) {
            printf " report=\"file://%s\"", address(report)
        }
        if ($0 ~ /^-?[0-9]+$/ && length($0) <= 11 && $0 + 0 >= -2147483648 && $0 + 0 <= 4294967295) {
            printf " code=\"%.0f\"", ($0 > 2147483647 ? $0 - 4294967296 : $0 + 0)
        } else if ($0 != "") {
            printf "collect-reports: %s: the return code is no number\n", escaped(name) >"/dev/stderr"
        }
        print "/>"
    }
    END { print "</servers>" }' | { iconv -c -f UTF-8 -t UTF-8 || true; } >"$work/servers.xml"

# What xsltproc says of a broken file shows pieces of it; the line of its own above says enough.
xsltproc --nonet --novalid --stringparam collected "$(date -u +%Y-%m-%dT%H:%M:%SZ)" -o "$work/fleet.xml" \
    "$work/fleet.xsl" "$work/servers.xml" 2>"$work/errors" || { cat "$work/errors" >&2; exit 1; }
grep '^collect-reports: ' "$work/errors" >&2 || true
cat "$work/fleet.xml"
