=== 40 columns
Codex
  Activo    sí
  Sesión    sí
  Versión   codex-cli 0.61.0
  Programa  ~/.local/bin/codex

Claude Code
  Activo    sí
  Sesión    no
  Versión   2.1.330 (Claude Code)
  Programa  ~/.local/bin/claude

Antigravity
  Activo    sí
  Sesión    desconocido
  Versión   –
  Programa  no encontrado
=== 80 columns
Agente       Activo  Sesión       Versión                Programa
Codex        sí      sí           codex-cli 0.61.0       ~/.local/bin/codex
Claude Code  sí      no           2.1.330 (Claude Code)  ~/.local/bin/claude
Antigravity  sí      desconocido  –                      no encontrado
