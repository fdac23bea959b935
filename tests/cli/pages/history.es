=== 40 columns
Codex
  Ventana    Sesión
  Evolución     ▅▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂
  Último     21 % restante
  Entradas   520
  Desde      15 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión
             (limit:review|session)
  Evolución                  ▆▄▁▅▃▁▅▂▁▄▁
  Último     6,6 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión
             (limit:review|primary)
  Evolución                  ▇▅▃▁▆▄▂▁▅▃▁
  Último     6,2 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Claude Code
  Ventana    Semana · Fable
  Evolución  ▇▆▅▄▃▂▁▆▅▄▃▂▁▇▅▄▃▂▁▇▆▅▄▃▂▁▆
  Último     74 % restante
  Entradas   600
  Desde      11 dic 2025, 13:48

Antigravity
  Ventana    Modelos Claude y GPT
  Evolución                       ▇▆▄▃▂▁
  Último     81 % restante
  Entradas   121
  Desde      dom, 13:48
=== 60 columns
Codex
  Ventana    Sesión
  Evolución        ▅▂▂▂▂▂▃▂▂▂▂▂▂▃▂▂▂▂▂▂▄▂▂▃▂▂▂▂▂▂▃▂▂▂▂▂▂▃▂▂▂
  Último     21 % restante
  Entradas   520
  Desde      15 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión (limit:review|session)
  Evolución                              ▇▆▄▃▁▆▅▄▂▁▆▅▃▂▁▆▄▃▁
  Último     6,6 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión (limit:review|primary)
  Evolución                              ▇▆▅▄▃▂▁▆▅▄▃▂▁▇▆▅▄▂▁
  Último     6,2 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Claude Code
  Ventana    Semana · Fable
  Evolución  ▇▇▆▆▅▄▄▃▃▂▁▇▇▆▆▅▄▄▃▃▂▁▇▇▆▆▅▄▄▃▃▂▁▇▇▆▆▅▄▄▃▂▂▁▇▇▆
  Último     74 % restante
  Entradas   600
  Desde      11 dic 2025, 13:48

Antigravity
  Ventana    Modelos Claude y GPT
  Evolución                                       █▇▆▅▄▃▃▂▁▇
  Último     81 % restante
  Entradas   121
  Desde      dom, 13:48
=== 80 columns
Codex
  Ventana    Sesión
  Evolución          █▅▂▅▂▅▂▅▂▅▂▅▂▅▂▅▂▅▂▅▂▅▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂▂
  Último     21 % restante
  Entradas   520
  Desde      15 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión (limit:review|session)
  Evolución                                          ▇▆▅▄▃▂▁▇▆▅▄▃▂▁▇▆▅▄▃▂▁▆▅▄▃▂▁
  Último     6,6 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Codex
  Ventana    Code review · Sesión (limit:review|primary)
  Evolución                                          ▇▇▆▅▅▄▃▂▂▁▇▆▅▄▄▃▂▁▁▇▆▅▄▄▃▂▁
  Último     6,2 % restante
  Entradas   240
  Desde      29 dic 2025, 13:48

Claude Code
  Ventana    Semana · Fable
  Evolución  █▇▇▆▆▅▅▅▄▄▃▃▂▂▂▁▇▇▇▆▆▅▅▄▄▄▃▃▂▂▁▁▇▇▆▆▆▅▅▄▄▃▃▃▂▂▁█▇▇▆▆▅▅▅▄▄▃▃▂▂▂▁▇▇▇▆
  Último     74 % restante
  Entradas   600
  Desde      11 dic 2025, 13:48

Antigravity
  Ventana    Modelos Claude y GPT
  Evolución                                                       █▇▇▆▅▅▄▄▃▂▂▁▇▇
  Último     81 % restante
  Entradas   121
  Desde      dom, 13:48
=== 120 columns
Agente       Ventana                                      Evolución         Último          Entradas  Desde
Codex        Sesión                                         ▂▂▂▂▂▂▂▂▂▂▂▂▂▂  21 % restante        520  15 dic 2025, 13:48
Codex        Code review · Sesión (limit:review|session)           ▆▂▁▁▃▁▁  6,6 % restante       240  29 dic 2025, 13:48
Codex        Code review · Sesión (limit:review|primary)           ▇▄▁▄▁▅▁  6,2 % restante       240  29 dic 2025, 13:48
Claude Code  Semana · Fable                               ▆▄▃▁▆▄▂▁▅▄▂▁▅▃▁▆  74 % restante        600  11 dic 2025, 13:48
Antigravity  Modelos Claude y GPT                                     █▅▃▁  81 % restante        121  dom, 13:48
=== 200 columns
Agente       Ventana                                      Evolución                                                                                         Último          Entradas  Desde
Codex        Sesión                                                   █▅▃▂▅▃▂▅▂▂▅▂▂▄▂▂▄▂▂▄▂▆▄▂▅▃▂▅▃▂▅▃▂▅▂▂▄▂▂▄▂▂▄▂▆▄▂▆▃▂▅▃▂▅▃▂▅▂▂▅▂▂▄▂▂▄▂▆▄▂▆▄▂▅▃▂▅▃▂▅▂▂▅▂  21 % restante        520  15 dic 2025, 13:48
Codex        Code review · Sesión (limit:review|session)                                                           █▇▆▆▅▄▄▃▂▂▁▇▆▅▅▄▃▃▂▁▇▇▆▅▄▄▃▂▂▁▇▆▆▅▄▃▃▂▁  6,6 % restante       240  29 dic 2025, 13:48
Codex        Code review · Sesión (limit:review|primary)                                                           █▇▇▆▆▅▅▄▄▃▃▂▂▁▇▇▆▆▅▅▄▄▃▃▂▂▁▇▇▆▆▅▅▄▄▃▂▂▁  6,2 % restante       240  29 dic 2025, 13:48
Claude Code  Semana · Fable                               █▇▇▇▇▆▆▆▅▅▅▄▄▄▄▃▃▃▂▂▂▁▁█▇▇▇▆▆▆▅▅▅▅▄▄▄▃▃▃▂▂▂▂▁█▇▇▇▆▆▆▆▅▅▅▄▄▄▄▃▃▃▂▂▂▁▁▇▇▇▇▆▆▆▅▅▅▅▄▄▄▃▃▃▂▂▂▂▁█▇▇▇▆▆  74 % restante        600  11 dic 2025, 13:48
Antigravity  Modelos Claude y GPT                                                                                                     ██▇▇▆▆▅▅▅▄▄▃▃▃▂▂▁█▇▇  81 % restante        121  dom, 13:48
