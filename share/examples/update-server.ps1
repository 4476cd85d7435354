<#
.SYNOPSIS
Runs Tarnlift on this server, keeps its XML report, and says what the result asks for.

.DESCRIPTION
The report goes to SERVER.xml in the report directory, Tarnlift's return code to SERVER.code. When the run ended before
Tarnlift began a report, what it printed goes to SERVER.txt instead, and there is no SERVER.xml.

Ends with 0 when all is well, 3010 when a reboot is needed as well (the number that Windows installers use), else with
Tarnlift's return code, or 100 when Tarnlift was not started or its report does not fit its return code.
Made for Windows PowerShell 5.1. Run it as an administrator.

.PARAMETER Operation
What Tarnlift shall do. Without it the run is a preview, which writes nothing to an adapter.

.PARAMETER Auto
Takes the images of the firmware directory instead of fwmatrix.txt.

.PARAMETER ProgramDirectory
Where tarnlift.exe lies. Without it the directory of this script.

.PARAMETER ReportDirectory
Where the report goes, such as a share. Without it "reports" in the directory of this script.

.PARAMETER Restart
Restarts the server when a reboot is needed and no port has failed.

.EXAMPLE
powershell.exe -NoProfile -ExecutionPolicy Bypass -File C:\Tarnlift\update-server.ps1 -Operation Update
#>
[CmdletBinding()]
param(
    [ValidateSet('Query', 'Preview', 'Update', 'Rewrite', 'Downgrade', 'Force')]
    [string] $Operation = 'Preview',
    [switch] $Auto,
    [string] $ProgramDirectory,
    [string] $ReportDirectory,
    [switch] $Restart
)
Set-StrictMode -Version 2.0
$ErrorActionPreference = 'Stop'

$notStarted = 100
$rebootRequired = 3010
$switchesOf = @{
    Query = @('/q'); Preview = @('/p', '/update'); Update = @('/update')
    Rewrite = @('/rewrite'); Downgrade = @('/downgrade'); Force = @('/ff')
}
# What the statuses of the ports mean to an operator. What is not named here is a failure.
$groupOfStatus = @{
    '0' = 'done'; '1' = 'done'; '22' = 'done'; '29' = 'done'; '17' = 'previewed'
    '2' = 'not needed'; '10' = 'passed by'; '13' = 'passed by'; '16' = 'passed by'
}
$groupOfCode = @{
    0 = 'FINE', 'All that was required succeeded.'
    1 = 'FINE', 'No port needs this operation.'
    2 = 'FAILED', 'Nothing succeeded. The ports below, or the message, say why.'
    3 = 'FAILED', 'Some ports failed, the others are done.'
    4 = 'FAILED', 'The command line is wrong, or the program directory cannot be found.'
    5 = 'LOOK', "No adapters found. Try winhbcfg.exe listattr, and look for a blank in TEMP ($env:TEMP)."
    6 = 'FAILED', 'There is no firmware directory.'
    7 = 'LOOK', 'No usable firmware file for any port. Look into the table and the firmware directory.'
    8 = 'FAILED', 'Not enough rights. Run it as an administrator.'
    9 = 'FAILED', 'This Windows is too old.'
    19 = 'FAILED', 'The file is no firmware file.'
}

function Write-Result([string] $Group, [string] $Text) {
    Write-Output ('{0}: {1} - {2}' -f $env:COMPUTERNAME, $Group, $Text)
}

# Null when the file is missing or empty, or no whole document of Tarnlift.
function Read-Report([string] $Path) {
    $document = New-Object System.Xml.XmlDocument
    $document.XmlResolver = $null
    try {
        $document.Load($Path)
    } catch {
        return $null
    }
    if ('Inventory', 'Execution' -notcontains $document.DocumentElement.Name) { return $null }
    if ($null -eq $document.DocumentElement.SelectSingleNode('Message/@id')) { return $null }
    return $document.DocumentElement
}

# The ports of a report as objects. A query has no outcome for them.
function Get-Port([System.Xml.XmlElement] $Report) {
    foreach ($device in $Report.SelectNodes('Device')) {
        $firmware = $device.SelectSingleNode('Application[@componentType="firmware"]')
        $status = $device.SelectSingleNode('Application/DownloadStatus')
        $change = $device.SelectSingleNode('Application/VersionChange')
        $port = New-Object PSObject -Property @{
            Model = $device.GetAttribute('hba'); Wwn = $device.GetAttribute('wwpn')
            Firmware = ''; New = ''; Status = ''; Group = ''; Message = ''
        }
        if ($null -ne $firmware) { $port.Firmware = $firmware.GetAttribute('version') }
        if ($null -ne $change) { $port.New = $change.GetAttribute('newVersion') }
        if ($null -ne $status) {
            $port.Status = $status.GetAttribute('status')
            $port.Message = $status.GetAttribute('message')
            $port.Group = 'failed'
            if ($groupOfStatus.ContainsKey($port.Status)) { $port.Group = $groupOfStatus[$port.Status] }
        }
        $port
    }
}

if (-not $ProgramDirectory) { $ProgramDirectory = $PSScriptRoot }
if (-not $ReportDirectory) { $ReportDirectory = Join-Path $PSScriptRoot 'reports' }

try {
    # What is not a command of PowerShell does not know its current directory.
    $ReportDirectory = $ExecutionContext.SessionState.Path.GetUnresolvedProviderPathFromPSPath($ReportDirectory)
    $program = Join-Path $ProgramDirectory 'tarnlift.exe'
    $reportFile = Join-Path $ReportDirectory "$env:COMPUTERNAME.xml"
    $textFile = Join-Path $ReportDirectory "$env:COMPUTERNAME.txt"
    $codeFile = Join-Path $ReportDirectory "$env:COMPUTERNAME.code"
    New-Item -ItemType Directory -Force -Path $ReportDirectory | Out-Null
    # A report of an earlier run must not be taken for this one's.
    Remove-Item -LiteralPath $reportFile, $textFile, $codeFile -Force -ErrorAction SilentlyContinue
    foreach ($file in $reportFile, $textFile, $codeFile) {
        if (Test-Path -LiteralPath $file) { throw "$file cannot be replaced." }
    }
    $switches = @($switchesOf[$Operation])
    if ($Auto) { $switches += '/auto' }
    # Tarnlift itself writes the file, since a redirection would change its encoding. Some messages come by standard
    # output alone: that the rights are missing, or that this file cannot be opened.
    $ErrorActionPreference = 'Continue'  # what the utility says on standard error ends no run, in a remote session either
    $printed = & $program @switches /xml "/log=$reportFile" /s | Out-String
    $code = $LASTEXITCODE
    $ErrorActionPreference = 'Stop'
} catch {
    Write-Result 'FAILED' "Tarnlift was not started: $_"
    exit $notStarted
}
try {
    Set-Content -LiteralPath $codeFile -Value $code
} catch {
    Write-Result 'LOOK' "Tarnlift ended with return code $code, which cannot be kept: $_"
}

$group, $advice = 'FAILED', "Tarnlift ended in an unexpected way (return code $code)."
if ($groupOfCode.ContainsKey($code)) { $group, $advice = $groupOfCode[$code] }

$report = Read-Report $reportFile
if ($null -eq $report) {
    if (Test-Path -LiteralPath $reportFile) {
        $printed += Get-Content -LiteralPath $reportFile | Out-String
        Remove-Item -LiteralPath $reportFile -Force
    }
    Set-Content -LiteralPath $textFile -Value $printed
    if ($printed.Trim()) { Write-Output $printed.Trim() }
    # Runs that succeeded, or that worked on ports, have a report. These have not, so something is wrong.
    if ($code -eq 0 -or $code -eq 1) {
        Write-Result 'FAILED' "Return code $code, but no whole report. Look into $textFile."
        exit $notStarted
    }
    Write-Result $group $advice
    exit $code
}
if ([string] $code -ne $report.SelectSingleNode('Message/@id').Value) {
    Write-Result 'FAILED' "Return code $code does not fit the report. Look into $reportFile."
    exit $notStarted
}

$ports = @(Get-Port $report)
$failed = @($ports | Where-Object { $_.Group -eq 'failed' })
foreach ($port in $ports) {
    Write-Output ('{0} {1} {2} -> {3}: {4} {5}' -f $port.Model, $port.Wwn, $port.Firmware, $port.New, $port.Group,
        $port.Message).TrimEnd(' ', ':', '>', '-')
}
$reboot = $report.SelectSingleNode('RebootRequired')
# Where ports failed, the report can say 0 although others wait for a reboot.
$waiting = @($ports | Where-Object { '1', '22' -contains $_.Status })
$needsReboot = ($null -ne $reboot -and $reboot.InnerText.Trim() -eq '1') -or $waiting.Count -gt 0
if ($needsReboot -and $group -eq 'FINE') { $group, $advice = 'REBOOT', 'Reboot to activate the new firmware.' }
Write-Result $group $advice
if ($needsReboot -and $group -ne 'REBOOT') { Write-Result $group 'Some boards wait for a reboot.' }
if (@($ports | Where-Object { $_.Status -eq '22' }).Count -gt 0) {
    Write-Result $group 'After the reboot run it again with -Operation Rewrite: this firmware has to be downloaded twice.'
}

if ($needsReboot -and $Restart -and $failed.Count -eq 0) { Restart-Computer -Force }
if ($group -eq 'REBOOT') { exit $rebootRequired }
if ($group -eq 'FINE') { exit 0 }
exit $code
