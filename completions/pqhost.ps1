# Completion of pqhost's command line for PowerShell:
#   . .\completions\pqhost.ps1
# in the profile ($PROFILE) for every session.

Register-ArgumentCompleter -Native -CommandName pqhost, pqhost.exe -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)

    $options = @{
        collect = '--module', '--table', '--replay', '--record', '--log-folder', '--plugin',
                  '--format', '--output', '--tool-limit', '--dry-run', '--trace', '--help'
        modules = '--plugin', '--format', '--help'
        query   = '--replay', '--plugin', '--log-folder', '--format', '--output', '--help'
        check   = '--module', '--replay', '--log-folder', '--plugin', '--help'
    }
    $formats = @{
        collect = 'table', 'json', 'ndjson', 'csv', 'html', 'sqlite', 'none'
        modules = 'table', 'json', 'markdown'
        query   = 'table', 'json', 'ndjson', 'csv', 'html', 'sqlite', 'none'
    }

    # The words before the one that is being typed.
    $words = @($commandAst.CommandElements |
        Where-Object { $_.Extent.EndOffset -lt $cursorPosition } |
        ForEach-Object { $_.ToString() })
    $command = $words | Where-Object { $options.ContainsKey($_) } | Select-Object -First 1
    $previous = $words[-1]

    $candidates = switch ($previous) {
        '--module' {
            'sampleModule1', 'sampleModule2', 'BMC_Info', 'AMT_Info', 'Windows_Related_Info'
        }
        '--table' {
            # What the program itself names; class names stand two columns in.
            & $words[0] modules 2>$null |
                ForEach-Object { if ($_ -cmatch '^  ([A-Z0-9]+) ') { $Matches[1] } }
        }
        '--format' { if ($command) { $formats[$command] } }
        { $_ -in '--replay', '--record', '--log-folder', '--plugin', '--output', '--trace' } {
            return  # PowerShell's own completion of paths
        }
        default {
            if ($command) { $options[$command] }
            else { 'collect', 'modules', 'query', 'check', '--help', '--version' }
        }
    }
    $candidates | Where-Object { $_ -like "$wordToComplete*" } | ForEach-Object {
        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)
    }
}
