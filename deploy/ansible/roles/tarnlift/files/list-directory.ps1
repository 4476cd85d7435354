# Lists a directory and everything below it, with owners and rights. Changes nothing.
param([String]$Path)
$ErrorActionPreference = 'Stop'
$found = @()
if (Test-Path -LiteralPath $Path) {
    $found = @(Get-Item -LiteralPath $Path -Force) + @(Get-ChildItem -LiteralPath $Path -Recurse -Force)
}
$Ansible.Changed = $false
$Ansible.Result = @($found | ForEach-Object {
        @{
            path = $_.FullName
            directory = $_.PSIsContainer
            link = [bool]($_.Attributes -band [IO.FileAttributes]::ReparsePoint)
            sddl = (Get-Acl -LiteralPath $_.FullName).Sddl
        }
    })
