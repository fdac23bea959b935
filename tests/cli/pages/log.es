=== 40 columns
2025-11-20 13:48:00 info vellmark:
    Refresh started (manual)
2025-11-20 13:48:03 notice Codex:
    Trying again in 20 s after a
    time-out
2025-11-20 13:48:09 error Claude
    Code: Claude Code could not load its
    usage page (“rate limit, please try
    again in a little while or have a
    look at the status page”).
=== 60 columns
2025-11-20 13:48:00 info vellmark: Refresh started (manual)
2025-11-20 13:48:03 notice Codex: Trying again in 20 s
    after a time-out
2025-11-20 13:48:09 error Claude Code: Claude Code could
    not load its usage page (“rate limit, please try again
    in a little while or have a look at the status page”).
=== 80 columns
2025-11-20 13:48:00 info vellmark: Refresh started (manual)
2025-11-20 13:48:03 notice Codex: Trying again in 20 s after a time-out
2025-11-20 13:48:09 error Claude Code: Claude Code could not load its usage
    page (“rate limit, please try again in a little while or have a look at the
    status page”).
=== 120 columns
2025-11-20 13:48:00 info vellmark: Refresh started (manual)
2025-11-20 13:48:03 notice Codex: Trying again in 20 s after a time-out
2025-11-20 13:48:09 error Claude Code: Claude Code could not load its usage page (“rate limit, please try again in a
    little while or have a look at the status page”).
=== 200 columns
2025-11-20 13:48:00 info vellmark: Refresh started (manual)
2025-11-20 13:48:03 notice Codex: Trying again in 20 s after a time-out
2025-11-20 13:48:09 error Claude Code: Claude Code could not load its usage page (“rate limit, please try again in a little while or have a look at the status page”).
