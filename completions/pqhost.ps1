# Completion of pqhost's command line for PowerShell, written by
# "pqhost completion --shell powershell":
#   . .\completions\pqhost.ps1
# in the profile ($PROFILE) for every session.

Register-ArgumentCompleter -Native -CommandName pqhost, pqhost.exe -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)

    $offers = @{
        'collect --module' = 'sampleModule1', 'sampleModule2', 'BMC_Info', 'AMT_Info', 'Windows_Related_Info'
        'collect --table' = '<table>'
        'collect --replay' = '<file>'
        'collect --limit' = '<any>'
        'collect --compare' = '<file>'
        'collect --record' = '<file>'
        'collect --redact' = 'public', 'support'
        'collect --key' = '<file>'
        'collect --log-folder' = '<folder>'
        'collect --plugin' = '<file>'
        'collect --format' = 'table', 'json', 'ndjson', 'csv', 'html', 'sqlite', 'prometheus', 'none'
        'collect --output' = '<file>'
        'collect --tool-limit' = '<any>'
        'collect --tool-memory' = '<any>'
        'collect --amt-login' = '<file>'
        'collect --time-limit' = '<any>'
        'collect --trace' = '<file>'
        'collect' = '--module', '--table', '--replay', '--limit', '--unverified', '--report', '--no-open', '--compare', '--record', '--redact', '--key', '--log-folder', '--plugin', '--unsafe-folder', '--format', '--output', '--identify', '--no-attachments', '--all', '--tool-limit', '--tool-memory', '--amt-login', '--no-input', '--time-limit', '--dry-run', '--trace', '--help'
        'health --replay' = '<file>'
        'health --limit' = '<any>'
        'health --format' = 'table', 'json', 'nagios', 'csv', 'sqlite'
        'health --output' = '<file>'
        'health --rules' = '<file>'
        'health --set' = '<any>'
        'health --settings' = '<file>'
        'health --suppress' = '<file>'
        'health --require' = '<any>'
        'health --as-of' = '<any>'
        'health --log-folder' = '<folder>'
        'health --plugin' = '<file>'
        'health --time-limit' = '<any>'
        'health' = '--replay', '--limit', '--unverified', '--format', '--output', '--brief', '--rules', '--set', '--settings', '--suppress', '--require', '--as-of', '--list-rules', '--log-folder', '--plugin', '--unsafe-folder', '--time-limit', '--help'
        'diff --ignore' = '<any>'
        'diff --table' = '<table>'
        'diff --part' = '<any>'
        'diff --format' = 'table', 'json', 'csv', 'sqlite', 'html'
        'diff --output' = '<file>'
        'diff --limit' = '<any>'
        'diff --time-limit' = '<any>'
        'diff' = '--ignore', '--table', '--part', '--all', '--format', '--output', '--limit', '--unverified', '--list-compared', '--time-limit', '--help'
        'modules --plugin' = '<file>'
        'modules --format' = 'table', 'json', 'markdown', 'parts', 'metrics'
        'modules --time-limit' = '<any>'
        'modules' = '--plugin', '--format', '--time-limit', '--help'
        'query --replay' = '<file>'
        'query --limit' = '<any>'
        'query --plugin' = '<file>'
        'query --log-folder' = '<folder>'
        'query --format' = 'table', 'json', 'ndjson', 'csv', 'html', 'sqlite', 'none'
        'query --output' = '<file>'
        'query --time-limit' = '<any>'
        'query' = '--replay', '--limit', '--unverified', '--plugin', '--unsafe-folder', '--log-folder', '--format', '--output', '--time-limit', '--help'
        'show --format' = 'table', 'json', 'ndjson', 'csv', 'html', 'sqlite', 'prometheus', 'none'
        'show --output' = '<file>'
        'show --limit' = '<any>'
        'show --time-limit' = '<any>'
        'show' = '--format', '--output', '--identify', '--no-attachments', '--all', '--limit', '--unverified', '--time-limit', '--help'
        'check --module' = 'sampleModule1', 'sampleModule2', 'BMC_Info', 'AMT_Info', 'Windows_Related_Info'
        'check --replay' = '<file>'
        'check --limit' = '<any>'
        'check --log-folder' = '<folder>'
        'check --plugin' = '<file>'
        'check --format' = 'table', 'json'
        'check --time-limit' = '<any>'
        'check' = '--module', '--replay', '--limit', '--unverified', '--log-folder', '--plugin', '--unsafe-folder', '--format', '--time-limit', '--help'
        'setup --from' = '<folder>'
        'setup --time-limit' = '<any>'
        'setup' = '--from', '--copy', '--time-limit', '--help'
        'verify --limit' = '<any>'
        'verify --time-limit' = '<any>'
        'verify' = '--key', '--limit', '--time-limit', '--help'
        'redact --profile' = 'support', 'public'
        'redact --kind' = '<any>'
        'redact --map' = '<file>'
        'redact --key' = '<file>'
        'redact --limit' = '<any>'
        'redact --time-limit' = '<any>'
        'redact' = '--profile', '--kind', '--preview', '--map', '--key', '--limit', '--unverified', '--time-limit', '--help'
        'help --time-limit' = '<any>'
        'help' = 'collect', 'health', 'diff', 'modules', 'query', 'show', 'check', 'setup', 'verify', 'redact', 'help', '--time-limit', '--help'
        '' = 'collect', 'health', 'diff', 'modules', 'query', 'show', 'check', 'setup', 'verify', 'redact', 'help', '--version', '--help'
    }

    # The words before the one that is being typed.
    $words = @($commandAst.CommandElements |
        Where-Object { $_.Extent.EndOffset -lt $cursorPosition } |
        ForEach-Object { $_.ToString() })
    $command = $words | Where-Object { $_ -in 'collect', 'health', 'diff', 'modules', 'query', 'show', 'check', 'setup', 'verify', 'redact', 'help' } | Select-Object -First 1

    $candidates = $offers["$command $($words[-1])"]
    if (-not $candidates) { $candidates = $offers["$command"] }
    if ("$candidates" -in '<folder>', '<file>', '<any>') {
        return  # PowerShell's own completion of paths
    }
    if ("$candidates" -eq '<table>') {
        # The program lists them, each in a line of its own, two columns in.
        $candidates = & $words[0] modules 2>$null |
            ForEach-Object { if ($_ -cmatch '^  ([A-Z0-9]+) ') { $Matches[1] } }
    }
    $candidates | Where-Object { $_ -like "$wordToComplete*" } | ForEach-Object {
        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)
    }
}
