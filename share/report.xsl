<?xml version="1.0" encoding="UTF-8"?>
<!--
  Makes one page of a report (Execution, Inventory) or of the reports of many servers (Fleet):
      xsltproc report.xsl fleet.xml >fleet.html
  The page needs nothing else: no file, no network. Without its script it lacks filter and sort only.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:exsl="http://exslt.org/common"
                exclude-result-prefixes="exsl">
  <xsl:output method="html" encoding="UTF-8" indent="no" doctype-system="about:legacy-compat"/>
  <xsl:strip-space elements="*"/>

  <!--
    The states of a port. `of` holds what the report says of it: the status numbers of DownloadStatus, and two words for
    the ports of an Inventory, which have none. The text is what the page tells of the state. The order is that of the
    totals and of the sort by state; the last row takes what no other row has.
  -->
  <xsl:variable name="state-table">
    <state name="failed" word="Failed" of=" 3 4 5 6 7 8 18 19 20 21 23 24 25 26 27 28 30 31 32 33 34 35 36 ">The download
      or its preview failed, or the file that fwmatrix.txt names cannot be used. The message says why.</state>
    <state name="incomplete" word="Incomplete" of=" incomplete ">A query that counts as failed: the listing has no usable
      WWN, model, firmware version or boot code version of the port.</state>
    <state name="silent" word="No report" of=" ">The server gave no report that can be read. Its return code, if it is
      known, says why.</state>
    <state name="reboot" word="Reboot needed" of=" 1 22 ">The firmware was downloaded and runs after a reboot. The
      message says so if the same file has to be downloaded again behind the reboot.</state>
    <state name="skipped" word="Skipped" of=" 9 10 11 12 13 14 15 16 ">Passed by: the port has no firmware version, no
      line in fwmatrix.txt, or no image of its family.</state>
    <state name="previewed" word="Would update" of=" 17 ">Previewed with success; nothing was written.</state>
    <state name="updated" word="Updated" of=" 0 29 ">The firmware was downloaded and needs no reboot.</state>
    <state name="current" word="Up to date" of=" 2 ">No download was needed.</state>
    <state name="listed" word="Listed" of=" listed ">A query found the port, and its data are complete.</state>
    <state name="unknown" word="Unknown" of=" ">The report has a status that this page does not know.</state>
  </xsl:variable>
  <xsl:variable name="states" select="exsl:node-set($state-table)/state"/>

  <!-- Why a server can have no report, by its return code. -->
  <xsl:variable name="code-table">
    <code of="0">The help or a version was shown, or the output was no document</code>
    <code of="2">The switches do not go together, or fwmatrix.txt was not found</code>
    <code of="4">A bad switch, or the program's directory cannot be found</code>
    <code of="5">No supported adapters</code>
    <code of="6">With /auto: no firmware directory</code>
    <code of="8">Not enough rights</code>
    <code of="9">The system is too old</code>
    <code of="19">No firmware file, or its version cannot be read</code>
  </xsl:variable>
  <xsl:variable name="codes" select="exsl:node-set($code-table)/code"/>

  <!-- What `of` is compared with. An Inventory's ports count as failed by the same values in the program. -->
  <xsl:template match="Device" mode="key"><xsl:value-of select="Application/DownloadStatus/@status"/></xsl:template>
  <xsl:template match="Inventory/Device" mode="key">listed</xsl:template>
  <xsl:template priority="1" mode="key" match="Inventory/Device[
      @wwpn = '00:00:00:00:00:00:00:00' or @wwpn = 'N/A' or @wwpn = 'NONE' or @hba = 'UNKNOWN_MODEL' or @hba = 'Unknown' or
      Application[@componentType = 'firmware']/@version = 'N/A' or
      Application[@componentType = 'firmware']/@version = 'NONE' or
      Application[@componentType = 'bootCode']/@version = 'N/A']">incomplete</xsl:template>

  <xsl:template match="Device" mode="state">
    <xsl:variable name="key"><xsl:apply-templates select="." mode="key"/></xsl:variable>
    <xsl:variable name="place" select="concat(' ', $key, ' ')"/>
    <xsl:value-of select="($states[contains(@of, $place)] | $states[last()])[1]/@name"/>
  </xsl:template>

  <xsl:variable name="servers" select="/Fleet/Server | /Execution | /Inventory"/>
  <xsl:variable name="ports" select="$servers/Device | $servers/*/Device"/>
  <xsl:variable name="downloads" select="boolean($ports/parent::Execution)"/>
  <xsl:variable name="queries" select="boolean($ports/parent::Inventory)"/>
  <xsl:variable name="columns" select="5 + 3 * $downloads + $queries"/>

  <!-- The state of each port below its server, for the totals. -->
  <xsl:variable name="tally-tree">
    <xsl:for-each select="$servers">
      <server>
        <xsl:for-each select="Device | */Device">
          <port><xsl:attribute name="state"><xsl:apply-templates select="." mode="state"/></xsl:attribute></port>
        </xsl:for-each>
        <xsl:if test="not(Device | */Device)"><none state="silent"/></xsl:if>
      </server>
    </xsl:for-each>
  </xsl:variable>
  <xsl:variable name="tally" select="exsl:node-set($tally-tree)/server"/>

  <xsl:template match="/">
    <html lang="en">
      <head>
        <meta name="viewport" content="width=device-width, initial-scale=1"/>
        <meta name="color-scheme" content="light dark"/>
        <meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:; base-uri 'none'; form-action 'none'"/>
        <link rel="icon" href="data:,"/>
        <title>Firmware report</title>
        <xsl:call-template name="style"/>
      </head>
      <body>
        <header>
          <h1>Firmware report</h1>
          <p>
            <xsl:call-template name="counted"><xsl:with-param name="number" select="count($servers)"/><xsl:with-param name="word" select="'server'"/></xsl:call-template>
            <xsl:text>, </xsl:text>
            <xsl:call-template name="counted"><xsl:with-param name="number" select="count($ports)"/><xsl:with-param name="word" select="'port'"/></xsl:call-template>
            <xsl:for-each select="/Fleet/@Collected">
              <xsl:text>, collected </xsl:text>
              <time datetime="{.}"><xsl:value-of select="concat(substring(., 1, 10), ' ', substring(., 12, 5))"/><xsl:if test="contains(., 'Z')"> UTC</xsl:if></time>
            </xsl:for-each>
          </p>
        </header>
        <main>
          <xsl:call-template name="totals"/>
          <div class="controls" id="controls" hidden="hidden">
            <label for="search">Filter</label>
            <input id="search" type="search" autocomplete="off" spellcheck="false" placeholder="Server, WWN, model, version, message"/>
            <button type="button" id="reset" hidden="hidden">Show all</button>
            <p id="count" role="status" aria-live="polite"></p>
          </div>
          <xsl:call-template name="table"/>
          <xsl:call-template name="legend"/>
        </main>
        <xsl:call-template name="script"/>
      </body>
    </html>
  </xsl:template>

  <xsl:template name="counted">
    <xsl:param name="number"/>
    <xsl:param name="word"/>
    <xsl:value-of select="concat(format-number($number, '#,##0'), ' ', $word, substring('s', 1, number($number != 1)))"/>
  </xsl:template>

  <!-- The states that everyone looks for show a 0, too; the others only where they occur. -->
  <xsl:template name="totals">
    <div class="bar" aria-hidden="true">
      <xsl:for-each select="$states">
        <xsl:variable name="count" select="count($tally/port[@state = current()/@name])"/>
        <xsl:if test="$count"><span class="{@name}" style="flex-grow:{$count}"></span></xsl:if>
      </xsl:for-each>
    </div>
    <ul class="totals" aria-label="Totals">
      <xsl:for-each select="$states">
        <xsl:variable name="count" select="count($tally/*[@state = current()/@name])"/>
        <xsl:variable name="on" select="count($tally[*/@state = current()/@name])"/>
        <xsl:if test="$count or ($downloads and contains(' failed reboot skipped updated current ', concat(' ', @name, ' ')))
                      or ($servers/self::Server and @name = 'silent')">
          <li data-state="{@name}" data-count="{$count}">
            <span class="tile">
              <strong><xsl:value-of select="format-number($count, '#,##0')"/></strong>
              <span class="word {@name}"><xsl:value-of select="@word"/></span>
              <small>
                <xsl:choose>
                  <xsl:when test="@name = 'silent'">
                    <xsl:call-template name="counted-word"><xsl:with-param name="number" select="$count"/><xsl:with-param name="word" select="'server'"/></xsl:call-template>
                  </xsl:when>
                  <xsl:otherwise>
                    <xsl:call-template name="counted-word"><xsl:with-param name="number" select="$count"/><xsl:with-param name="word" select="'port'"/></xsl:call-template>
                    <xsl:if test="$servers/self::Server and $count">
                      <xsl:text> on </xsl:text>
                      <xsl:call-template name="counted"><xsl:with-param name="number" select="$on"/><xsl:with-param name="word" select="'server'"/></xsl:call-template>
                    </xsl:if>
                  </xsl:otherwise>
                </xsl:choose>
              </small>
            </span>
          </li>
        </xsl:if>
      </xsl:for-each>
    </ul>
  </xsl:template>

  <xsl:template name="counted-word">
    <xsl:param name="number"/>
    <xsl:param name="word"/>
    <xsl:value-of select="concat($word, substring('s', 1, number($number != 1)))"/>
  </xsl:template>

  <xsl:template name="table">
    <table id="ports">
      <xsl:attribute name="style">
        <xsl:text>--columns: 200px 128px 102px 70px 106px</xsl:text>
        <xsl:choose>
          <xsl:when test="not($downloads)"> minmax(0, 1fr)</xsl:when>
          <xsl:when test="$queries"> 106px 106px minmax(90px, 1fr) minmax(0, 2fr)</xsl:when>
          <xsl:otherwise> 106px 172px minmax(0, 1fr)</xsl:otherwise>
        </xsl:choose>
      </xsl:attribute>
      <caption class="unseen">Ports by server</caption>
      <colgroup>
        <col class="wwn"/><col class="state"/><col class="adapter"/><col class="pci"/><col class="version"/>
        <xsl:if test="$queries"><col class="boot"/></xsl:if>
        <xsl:if test="$downloads"><col class="version"/><col class="file"/><col/></xsl:if>
      </colgroup>
      <thead>
        <tr>
          <th scope="col">Server, port</th>
          <th scope="col">State</th>
          <th scope="col">Adapter</th>
          <th scope="col">PCI</th>
          <th scope="col">
            <xsl:choose><xsl:when test="$downloads">Before</xsl:when><xsl:otherwise>Firmware</xsl:otherwise></xsl:choose>
          </th>
          <xsl:if test="$queries"><th scope="col">Boot code</th></xsl:if>
          <xsl:if test="$downloads">
            <th scope="col">Image</th>
            <th scope="col">Image file</th>
            <th scope="col">Message</th>
          </xsl:if>
        </tr>
      </thead>
      <xsl:apply-templates select="$servers" mode="server"/>
    </table>
  </xsl:template>

  <xsl:template match="*" mode="server">
    <xsl:variable name="report" select="self::Execution | self::Inventory | Execution | Inventory"/>
    <xsl:variable name="place" select="position()"/>
    <xsl:variable name="code" select="concat(@ReturnCode, substring($report/Message/@id, 1, 9 * not(@ReturnCode)))"/>
    <xsl:text>&#10;</xsl:text>
    <tbody>
      <tr class="server">
        <th scope="rowgroup" colspan="{$columns}">
          <span class="name">
            <xsl:value-of select="@Name"/>
            <xsl:if test="not(self::Server)">This server</xsl:if>
          </span>
          <xsl:text> </xsl:text>
          <xsl:if test="not($report)"><span class="word silent">No report</span><xsl:text> </xsl:text></xsl:if>
          <xsl:if test="$report/RebootRequired = 1 or $tally[$place]/port/@state = 'reboot'">
            <span class="word reboot">Reboot needed</span><xsl:text> </xsl:text>
          </xsl:if>
          <span class="sentence">
            <xsl:value-of select="normalize-space($report/Message)"/>
            <xsl:if test="not($report)"><xsl:value-of select="$codes[@of = $code]"/></xsl:if>
          </span>
          <xsl:if test="$code != ''"><xsl:text> </xsl:text><span class="code">Return code <xsl:value-of select="$code"/></span></xsl:if>
        </th>
      </tr>
      <xsl:apply-templates select="$report/Device" mode="row"/>
    </tbody>
  </xsl:template>

  <xsl:template match="Device" mode="row">
    <xsl:variable name="name"><xsl:apply-templates select="." mode="state"/></xsl:variable>
    <xsl:variable name="firmware" select="Application[@componentType = 'firmware']"/>
    <xsl:text>&#10;</xsl:text>
    <tr data-state="{$name}">
      <th scope="row" class="wwn"><xsl:value-of select="@wwpn"/></th>
      <td class="state"><span class="word {$name}"><xsl:value-of select="$states[@name = $name]/@word"/></span></td>
      <td class="adapter"><xsl:value-of select="@hba"/><xsl:text> </xsl:text><small><xsl:value-of select="@portType"/></small></td>
      <td class="pci"><xsl:value-of select="concat(@bus, ':', @device, '.', @function)"/></td>
      <td class="version{substring(' before', 1, 7 * boolean(parent::Execution))}"><xsl:apply-templates select="$firmware/@version" mode="value"/></td>
      <xsl:if test="$queries">
        <td class="boot">
          <xsl:for-each select="Application[@componentType = 'bootCode']">
            <xsl:apply-templates select="@version" mode="value"/>
            <xsl:text> </xsl:text>
            <small><xsl:choose><xsl:when test="@enabled = 0">boot off</xsl:when><xsl:otherwise>boot on</xsl:otherwise></xsl:choose></small>
          </xsl:for-each>
        </td>
      </xsl:if>
      <xsl:if test="$downloads">
        <td class="version new"><xsl:apply-templates select="$firmware/VersionChange/@newVersion" mode="value"/></td>
        <td class="file"><xsl:apply-templates select="$firmware/SupportedImage/@file" mode="value"/></td>
        <td class="message"><xsl:value-of select="$firmware/DownloadStatus/@message"/></td>
      </xsl:if>
    </tr>
  </xsl:template>

  <xsl:template match="@*" mode="value"><xsl:value-of select="."/></xsl:template>
  <xsl:template match="@*[. = 'NONE']" mode="value"><small>none</small></xsl:template>

  <xsl:template name="legend">
    <details>
      <summary>What the states mean</summary>
      <table class="legend">
        <thead><tr><th scope="col">State</th><th scope="col">Meaning</th><th scope="col">Status in the report</th></tr></thead>
        <tbody>
          <xsl:for-each select="$states">
            <tr>
              <th scope="row"><span class="word {@name}"><xsl:value-of select="@word"/></span></th>
              <td><xsl:value-of select="normalize-space(.)"/></td>
              <td><xsl:if test="number(substring-before(normalize-space(concat(@of, ' x')), ' ')) &gt;= 0"><xsl:value-of select="normalize-space(@of)"/></xsl:if></td>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </details>
  </xsl:template>

  <xsl:template name="style">
    <style>
:root {
  --page: #f5f6f7; --card: #fff; --band: #eef0f2; --text: #1c2127; --quiet: #565f6a; --line: #dde1e5; --focus: #1a5fb4;
  --failed: #a3201a; --failed-tint: #fdeae8; --reboot: #754a00; --reboot-tint: #fff1cf; --skipped: #4b4a63; --skipped-tint: #ebeaf2;
  --updated: #17602f; --updated-tint: #e2f3e7; --current: #1d5380; --current-tint: #e4eff8; --previewed: #5a3a9b; --previewed-tint: #efe9fb;
}
@media screen and (prefers-color-scheme: dark) {
  :root {
    --page: #131619; --card: #1a1e22; --band: #22272d; --text: #e4e8ec; --quiet: #9da7b1; --line: #303740; --focus: #8ab8f0;
    --failed: #ffb1a8; --failed-tint: #4c1d1a; --reboot: #f7cd7c; --reboot-tint: #44330c; --skipped: #cbc9e2; --skipped-tint: #33323f;
    --updated: #98dfae; --updated-tint: #173a23; --current: #a6d0f5; --current-tint: #173449; --previewed: #cdbdfc; --previewed-tint: #34285c;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; }
body { margin: 0; padding: 20px 24px 48px; background: var(--page); color: var(--text);
  font: 13px/1.4 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", Arial, sans-serif; font-variant-numeric: tabular-nums; }
header { display: flex; flex-wrap: wrap; align-items: baseline; gap: 2px 16px; }
h1 { margin: 0; font-size: 20px; letter-spacing: -.01em; }
header p, #count { margin: 0; color: var(--quiet); } time { white-space: nowrap; }
small { font-size: inherit; color: var(--quiet); }
button, input { font: inherit; color: inherit; }
:focus-visible { outline: 2px solid var(--focus); outline-offset: 2px; }
[hidden] { display: none !important; }
.unseen { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }

.failed, .incomplete, .silent, .unknown { --ink: var(--failed); --tint: var(--failed-tint); }
.reboot { --ink: var(--reboot); --tint: var(--reboot-tint); }
.skipped, .listed { --ink: var(--skipped); --tint: var(--skipped-tint); }
.updated { --ink: var(--updated); --tint: var(--updated-tint); }
.current { --ink: var(--current); --tint: var(--current-tint); }
.previewed { --ink: var(--previewed); --tint: var(--previewed-tint); }
.word { display: inline-block; padding: 0 7px; border-radius: 3px; background: var(--tint); color: var(--ink);
  font-size: 12px; font-weight: 600; line-height: 18px; white-space: nowrap; }
.silent, .unknown, .incomplete { box-shadow: inset 0 0 0 1px currentColor; }

.bar { display: flex; gap: 2px; height: 6px; margin: 16px 0 10px; border-radius: 3px; overflow: hidden; }
.bar span { flex-basis: 0; min-width: 3px; background: var(--ink); box-shadow: none; }
.totals { display: grid; grid-template-columns: repeat(auto-fit, minmax(136px, 1fr)); gap: 8px; margin: 0; padding: 0; list-style: none; }
.totals li { display: flex; }
.tile { min-width: 0; display: flex; flex-direction: column; flex: 1; align-items: flex-start; gap: 1px; padding: 9px 12px 10px;
  border: 1px solid var(--line); border-radius: 6px; background: var(--card); text-align: left; }
.totals strong { font-size: 22px; line-height: 28px; font-weight: 600; }
button.tile { cursor: pointer; }
button.tile:hover { border-color: var(--quiet); }
.tile[aria-pressed=true] { border-color: var(--text); box-shadow: inset 0 0 0 1px var(--text); }
.totals li[data-count="0"] strong { color: var(--quiet); font-weight: 400; }
.totals li[data-count="0"] .word { background: none; box-shadow: none; padding: 0; color: var(--quiet); }

.controls { display: flex; flex-wrap: wrap; align-items: center; gap: 8px 10px; margin: 16px 0 8px; min-height: 32px; }
.controls label { font-weight: 600; }
.controls input { flex: 0 1 340px; min-width: 0; padding: 5px 9px; border: 1px solid var(--quiet); border-radius: 5px; background: var(--card); }
.controls input::placeholder { color: var(--quiet); opacity: 1; }
.controls button { padding: 5px 11px; border: 1px solid var(--quiet); border-radius: 5px; background: var(--card); cursor: pointer; }
#count { margin-left: auto; }

#ports { width: 100%; margin-top: 12px; border: 1px solid var(--line); border-radius: 6px; border-spacing: 0; table-layout: fixed; background: var(--card); }
/* On a screen the rows are grids, so that the servers out of sight are not laid out: a table would be as a whole. */
@media screen {
  #ports, #ports thead, #ports tbody, #ports tr.server, #ports tr.server th { display: block; }
  #ports tr { display: grid; grid-template-columns: var(--columns); }
  #ports thead { position: sticky; top: 0; z-index: 1; }
  #ports tbody { content-visibility: auto; contain-intrinsic-size: auto 250px; }
}
.controls:not([hidden]) + #ports { margin-top: 0; }
th, td { padding: 4px 10px; text-align: left; vertical-align: top; overflow-wrap: anywhere; font-weight: 400; }
#ports thead th { padding: 6px 10px; background: var(--band); color: var(--quiet); font-weight: 600;
  margin-bottom: -1px; border-bottom: 1px solid var(--line); }
#ports thead th:first-child { border-top-left-radius: 6px; } #ports thead th:last-child { border-top-right-radius: 6px; }
#ports thead button { margin: -6px -10px; padding: 6px 10px; width: calc(100% + 20px); border: 0; background: none; color: inherit; font-weight: inherit;
  text-align: left; cursor: pointer; }
#ports thead button:focus-visible { outline-offset: -2px; }
#ports thead button:hover, #ports th[aria-sort] { color: var(--text); }
#ports th[aria-sort=ascending] button::after { content: "\00A0\2191"; } #ports th[aria-sort=descending] button::after { content: "\00A0\2193"; }
tr.server th { padding: 9px 10px 5px; border-top: 1px solid var(--line); }
.name { font-size: 14px; font-weight: 650; } .name, tr.server .word { margin-right: 4px; }
.sentence { color: var(--quiet); } .code { color: var(--quiet); white-space: nowrap; }
.sentence:not(:empty) + .code::before { content: "\00B7\00A0"; }
tbody tr:last-child > * { padding-bottom: 9px; }
tbody tr[data-state]:hover > * { background: var(--band); }
th.wwn { padding-left: 18px; padding-right: 4px; font: 12px/18px ui-monospace, "Cascadia Mono", Consolas, Menlo, "DejaVu Sans Mono", monospace; }
.message { font-size: 12px; line-height: 18px; }
tr[data-state=current] .message, tr[data-state=updated] .message { color: var(--quiet); }
details { margin-top: 20px; } summary { cursor: pointer; color: var(--quiet); width: fit-content; }
.legend { margin-top: 8px; max-width: 900px; border-spacing: 0; } .legend thead th { color: var(--quiet); font-weight: 600; }
.legend td:last-child { color: var(--quiet); min-width: 150px; }

@media screen and (max-width: 1080px) {
  body { padding: 14px 12px 32px; font-size: 14px; }
  .totals { grid-template-columns: repeat(auto-fill, minmax(140px, 1fr)); }
  .controls label { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  .controls input { flex: 1 1 180px; padding: 8px 10px; font-size: 16px; }
  .controls button { padding: 8px 12px; }
  #count { margin: 0; flex-basis: 100%; }
  #ports { border: 0; background: none; }
  #ports thead { position: static; margin-bottom: 10px; }
  #ports thead tr { display: flex; flex-wrap: wrap; gap: 6px; }
  #ports:not(.sortable) thead { display: none; }
  #ports thead th { display: block; margin: 0; }
  #ports thead th, #ports thead th:first-child, #ports thead th:last-child { padding: 0; border: 1px solid var(--line); border-radius: 5px; background: var(--card); }
  #ports thead button { margin: 0; width: auto; padding: 5px 9px; font-size: 13px; font-weight: 400; }
  #ports tbody { margin-bottom: 10px; border: 1px solid var(--line); border-radius: 6px; background: var(--card); contain-intrinsic-size: auto 800px; }
  #ports tbody tr { grid-template-columns: minmax(0, 1fr) auto; gap: 1px 10px; padding: 8px 12px; border-top: 1px solid var(--line); }
  #ports thead tr::before { content: "Sort by"; align-self: center; color: var(--quiet); font-size: 13px; }
  #ports tbody tr > * { display: block; padding: 0; }
  #ports tbody td:empty { display: none; }
  #ports tbody tr.server { border: 0; background: var(--band); border-radius: 5px 5px 0 0; padding: 9px 12px; }
  #ports tbody tr.server th { border: 0; }
  #ports tbody tr.server:only-child { border-radius: 5px; }
  .tile { flex-direction: row; flex-wrap: wrap; align-items: center; align-content: start; gap: 0 7px; padding: 7px 10px 8px; } .tile .word { padding: 0 5px; font-size: 11px; } .tile small { flex-basis: 100%; }
  .totals strong { font-size: 18px; }
  .name { font-size: 16px; } .message { font-size: inherit; } th.wwn { font-size: 13px; line-height: 20px; }
  #ports .state { justify-self: end; } #ports .pci { justify-self: end; color: var(--quiet); }
  .pci::before { content: "PCI "; } .boot::before { content: "Boot code "; color: var(--quiet); }
  .version::before { content: "Firmware "; color: var(--quiet); } .version.before::before { content: "Before "; } .version.new::before { content: "Image "; }
  #ports .version.new, #ports .boot { justify-self: end; }
  #ports .file, #ports .message { grid-column: 1 / -1; }
  .file::before { content: "File "; color: var(--quiet); }
}
@media print {
  @page { size: A4 landscape; margin: 11mm; }
  body { padding: 0; background: #fff; font-size: 8pt; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  .controls input, .controls button, .controls label, .controls #count:empty, details { display: none; }
  .controls { min-height: 0; margin: 6px 0; } #count { margin: 0; }
  .totals { display: flex; flex-wrap: wrap; gap: 5px; } .totals li { flex: 1 1 90px; } .tile { padding: 4px 8px; }
  .totals li { break-inside: avoid; } .totals strong { font-size: 13pt; line-height: 1.2; } .word { font-size: 7.5pt; line-height: 14px; box-shadow: inset 0 0 0 .5px currentColor; }
  #ports { border: 0; border-radius: 0; } 
  #ports thead th { padding: 3px 6px; } #ports thead button { display: contents; }
  th, td { padding: 1.5px 6px; } tr { break-inside: avoid; } tr.server { break-after: avoid; } tr.server th { padding: 6px 6px 2px; }
  th.wwn { padding-left: 12px; font-size: 7.5pt; line-height: inherit; } .message { font-size: 7pt; line-height: 1.35; } .name { font-size: 9pt; } tbody tr:last-child > * { padding-bottom: 4px; }
  col.wwn { width: 158px; } col.state { width: 106px; } col.adapter { width: 82px; } col.pci { width: 56px; } col.version, col.boot { width: 84px; } col.file { width: 150px; }
}
    </style>
  </xsl:template>

  <!-- The script takes no text of the report for anything but text: it reads it to compare, and writes none of it. -->
  <xsl:template name="script">
    <script><![CDATA[
"use strict";
(() => {
  const table = document.getElementById("ports");
  const search = document.getElementById("search");
  const reset = document.getElementById("reset");
  const chosen = new Set();
  const collator = new Intl.Collator("en", { numeric: true });
  const textOf = row => Array.from(row.cells, cell => cell.textContent).join(" ").toLowerCase();
  const number = value => value.toLocaleString("en");

  // A server without ports is found by its own row.
  const servers = Array.from(table.tBodies, body => {
    const [head, ...rows] = body.rows;
    const text = textOf(head);
    const ports = rows.map(row => ({ row, state: row.dataset.state, text: text + " " + textOf(row) }));
    return { body, text, ports, name: head.querySelector(".name").textContent };
  });
  const portCount = servers.reduce((sum, server) => sum + server.ports.length, 0);

  function buttonWith(nodes) {
    const button = document.createElement("button");
    button.type = "button";
    button.append(...nodes);
    return button;
  }

  function show(element, shown) {
    if (element.hidden === shown) {
      element.hidden = !shown;
    }
  }

  function filter() {
    const words = search.value.toLowerCase().split(/\s+/).filter(word => word);
    const matches = (text, state) => (!chosen.size || chosen.has(state)) && words.every(word => text.includes(word));
    let shownServers = 0;
    let shownPorts = 0;
    for (const { body, text, ports } of servers) {
      const found = ports.filter(port => {
        port.shown = matches(port.text, port.state);
        return port.shown;
      }).length;
      const shown = found > 0 || (!ports.length && matches(text, "silent"));
      show(body, shown);
      if (shown) {
        ports.forEach(port => show(port.row, port.shown));
      }
      shownServers += shown;
      shownPorts += found;
    }
    const all = !words.length && !chosen.size;
    show(reset, !all);
    document.getElementById("count").textContent = all ? "" :
      `${number(shownPorts)} of ${number(portCount)} ports, ${number(shownServers)} of ${number(servers.length)} servers`;
  }

  const tiles = Array.from(document.querySelectorAll(".totals li"), item => {
    const state = item.dataset.state;
    const tile = buttonWith(item.firstElementChild.childNodes);
    item.replaceChildren(tile);
    tile.className = "tile";
    tile.setAttribute("aria-pressed", "false");
    tile.addEventListener("click", () => {
      const pressed = !chosen.delete(state);
      if (pressed) {
        chosen.add(state);
      }
      tile.setAttribute("aria-pressed", pressed);
      filter();
    });
    return { state, tile };
  });

  search.addEventListener("input", filter);
  reset.addEventListener("click", () => {
    search.value = "";
    chosen.clear();
    tiles.forEach(({ tile }) => tile.setAttribute("aria-pressed", "false"));
    filter();
    search.focus();
  });

  // Sorts the ports of each server, then the servers by their first ports. What has no value comes last either way.
  const headings = Array.from(table.tHead.rows[0].cells);
  const rank = state => tiles.findIndex(tile => tile.state === state);
  const isState = heading => heading.textContent.trim() === "State";

  function sort(heading) {
    const ascending = heading.getAttribute("aria-sort") !== "ascending";
    const column = headings.indexOf(heading);
    const compare = isState(heading) ? (a, b) => a - b : column === 0 ? (a, b) => (a > b) - (a < b) : collator.compare;
    const keyOf = isState(heading) ? port => rank(port.state) : port => port.row.cells[column].textContent;
    const order = by => (a, b) => (a.key === undefined) - (b.key === undefined) ||
      (a.key === undefined ? 0 : ascending ? by(a.key, b.key) : by(b.key, a.key));
    for (const server of servers) {
      for (const port of server.ports) {
        port.key = keyOf(port);
      }
      server.ports.sort(order(compare));
      server.body.append(...server.ports.map(port => port.row));
      server.key = column === 0 ? server.name : server.ports.length ? server.ports[0].key : isState(heading) ? rank("silent") : undefined;
    }
    servers.sort(order(column === 0 ? collator.compare : compare));
    table.append(...servers.map(server => server.body));
    headings.forEach(other => other.removeAttribute("aria-sort"));
    heading.setAttribute("aria-sort", ascending ? "ascending" : "descending");
  }

  for (const heading of headings) {
    const button = buttonWith(heading.childNodes);
    heading.append(button);
    button.addEventListener("click", () => sort(heading));
  }
  table.classList.add("sortable");
  show(document.getElementById("controls"), true);
})();
]]></script>
  </xsl:template>
</xsl:stylesheet>
