<#
.SYNOPSIS
Puts the reports of many servers into one document, for report.xsl.

.DESCRIPTION
The directory holds a report NAME.xml of each server: what tarnlift.exe printed under /xml. NAME.code beside it, if it is
there, holds the return code. A file that is no report, or a NAME.code alone, leaves its server without one, and a word
on standard error.

On a server, cmd keeps the program's bytes as they are, which PowerShell's own redirection does not:
    cmd /c "tarnlift.exe /xml /update >NAME.xml"
    $LASTEXITCODE >NAME.code

.EXAMPLE
.\collect-reports.ps1 C:\reports -OutFile C:\pages\fleet.xml

.PARAMETER OutFile
The document, in another directory: in this one it would be taken for a server's report. Without it the document goes to
standard output as UTF-8, for cmd's redirection:  powershell -File collect-reports.ps1 C:\reports >fleet.xml
#>
[CmdletBinding()]
param(
    [Parameter(Mandatory = $true, Position = 0)] [string] $Directory,
    [string] $OutFile
)
Set-StrictMode -Version 2
$ErrorActionPreference = 'Stop'

# What XML cannot hold.
$unfit = '[^\t\n\r\u0020-\uD7FF\uE000-\uFFFD]'

# Warnings of PowerShell's own would land on standard output, in the document.
function Write-Word([string] $Text) {
    [System.Console]::Error.WriteLine("collect-reports: $Text")
}

# A report as a document, or nothing. The text is decoded here, by its mark or as UTF-8: behind PowerShell's redirection
# it is UTF-16, whatever its declaration says. Document types, which could draw other files in, are refused.
function Read-Report([string] $Path) {
    $settings = New-Object System.Xml.XmlReaderSettings
    $settings.DtdProcessing = [System.Xml.DtdProcessing]::Prohibit
    $settings.XmlResolver = $null
    $text = $null
    try {
        $strict = New-Object System.Text.UTF8Encoding($false, $true)
        $text = New-Object System.IO.StreamReader($Path, $strict, $true)
        $reader = [System.Xml.XmlReader]::Create($text, $settings)
        $document = New-Object System.Xml.XmlDocument
        $document.XmlResolver = $null
        $document.PreserveWhitespace = $true
        $document.Load($reader)
        $root = $document.DocumentElement
        if ($root.NamespaceURI -eq '' -and @('Execution', 'Inventory') -ccontains $root.LocalName) {
            return $document
        }
    } catch {
        return $null
    } finally {
        if ($null -ne $text) {
            $text.Dispose()
        }
    }
    return $null
}

# The return code as the process had it, or nothing. Codes above 2147483647 are negative ones, written without a sign.
function Read-ReturnCode([string] $Path) {
    if (-not [System.IO.File]::Exists($Path)) {
        return $null
    }
    $text = [System.IO.File]::ReadAllText($Path).Trim()
    $code = [long] 0
    if ($text -eq '') {
        return $null
    }
    if (-not [long]::TryParse($text, [ref] $code) -or $code -lt [int]::MinValue -or $code -gt [uint32]::MaxValue) {
        Write-Word "${Path}: the return code is no number"
        return $null
    }
    if ($code -gt [int]::MaxValue) {
        $code -= 4294967296
    }
    return $code
}

$folder = (Resolve-Path -LiteralPath $Directory).ProviderPath
$names = @(Get-ChildItem -LiteralPath $folder |
    Where-Object { -not $_.PSIsContainer -and @('.xml', '.code') -contains $_.Extension } |
    ForEach-Object { [System.IO.Path]::GetFileNameWithoutExtension($_.Name) } | Sort-Object -Unique)

$stream = if ($OutFile) {
    [System.IO.File]::Create($ExecutionContext.SessionState.Path.GetUnresolvedProviderPathFromPSPath($OutFile))
} else {
    [System.Console]::OpenStandardOutput()
}
try {
    $settings = New-Object System.Xml.XmlWriterSettings
    $settings.Encoding = New-Object System.Text.UTF8Encoding($false)
    $writer = [System.Xml.XmlWriter]::Create($stream, $settings)
    $writer.WriteStartDocument()
    $writer.WriteProcessingInstruction('xml-stylesheet', 'type="text/xsl" href="report.xsl"')
    $writer.WriteStartElement('Fleet')
    $writer.WriteAttributeString('Collected', [System.DateTime]::UtcNow.ToString('yyyy-MM-ddTHH:mm:ssZ',
            [System.Globalization.CultureInfo]::InvariantCulture))
    foreach ($name in $names) {
        $code = Read-ReturnCode ([System.IO.Path]::Combine($folder, "$name.code"))
        $report = Read-Report ([System.IO.Path]::Combine($folder, "$name.xml"))
        $writer.WriteStartElement('Server')
        $writer.WriteAttributeString('Name', [System.Text.RegularExpressions.Regex]::Replace($name, $unfit, '?'))
        if ($null -ne $code) {
            $writer.WriteAttributeString('ReturnCode', [string] $code)
        }
        if ($null -ne $report) {
            $report.DocumentElement.WriteTo($writer)
        } else {
            Write-Word "${name}: no report"
        }
        $writer.WriteEndElement()
    }
    $writer.WriteEndElement()
    $writer.WriteEndDocument()
    $writer.Flush()
} finally {
    $stream.Dispose()
}
