<#
Records this server and sends the recording to a fleet's door. What could not be sent stays in the
folder, for a week, and goes with the next one. For Windows with its own curl.exe (since 2019).

Once, as administrator: import the site's certificate, and have the task run every night, at a moment
of its own within four hours, so that not all servers knock at once:

  Import-PfxCertificate berlin.p12 Cert:\LocalMachine\My -Password (Read-Host -AsSecureString)
  $run = New-ScheduledTaskAction powershell.exe ('-NoProfile -ExecutionPolicy RemoteSigned -File ' +
    '"C:\pqhost\Send-Recording.ps1" -Door https://door.example.org -Site berlin -Authority C:\pqhost\ca.pem')
  $when = New-ScheduledTaskTrigger -Daily -At 01:00 -RandomDelay (New-TimeSpan -Hours 4)
  $how = New-ScheduledTaskSettingsSet -StartWhenAvailable -ExecutionTimeLimit (New-TimeSpan -Hours 3)
  Register-ScheduledTask pqfleet -Action $run -Trigger $when -Settings $how -User S-1-5-18 -RunLevel Highest
#>
param(
  [Parameter(Mandatory)] [string] $Door,
  [Parameter(Mandatory)] [string] $Site,
  [Parameter(Mandatory)] [string] $Authority,
  [string] $Program = 'C:\pqhost\pqhost.exe',
  [string] $Folder = "$env:ProgramData\pqhost\to-send"
)
$ErrorActionPreference = 'Stop'

$certificate = Get-ChildItem Cert:\LocalMachine\My |
  Where-Object { $_.Subject -eq "CN=$Site" -and $_.HasPrivateKey -and $_.NotAfter -gt (Get-Date) } |
  Sort-Object NotAfter | Select-Object -Last 1
if (-not $certificate) { throw "there is no valid certificate of the site $Site in LocalMachine\My" }

New-Item -ItemType Directory -Force $Folder | Out-Null
Get-ChildItem $Folder -Filter *.zip | Where-Object LastWriteTime -lt (Get-Date).AddDays(-7) | Remove-Item
$file = Join-Path $Folder ('{0}-{1:yyyyMMdd-HHmmss}.zip' -f $env:COMPUTERNAME, (Get-Date))
& $Program collect --no-input --time-limit 1800 --format none --record $file
# 1: something could not be collected, which the recording tells as well.
if ($LASTEXITCODE -gt 1) { Write-Warning "pqhost ended with $LASTEXITCODE" }

$failed = 0
foreach ($one in Get-ChildItem $Folder -Filter *.zip) {
  $name = (Get-FileHash $one.FullName -Algorithm SHA256).Hash.ToLowerInvariant()
  & "$env:SystemRoot\System32\curl.exe" --silent --show-error --fail --retry 8 --connect-timeout 20 --max-time 900 `
    --cert "LocalMachine\My\$($certificate.Thumbprint)" --cacert $Authority `
    --upload-file $one.FullName "$Door/recordings/$name.zip"
  if ($LASTEXITCODE -eq 0) { Remove-Item $one.FullName } else { $failed++ }
}
if ($failed) { Write-Warning "$failed recordings have not arrived"; exit 1 }
