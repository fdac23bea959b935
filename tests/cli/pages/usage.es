=== 40 columns
Claude Code  ● Queda poco  Max 20x
  somebody.with.a.long.name@department.e
  xample.org
  Sesión
    █████████┃░░░░░░░░░░░  46 % restante
    Se reinicia en 2 h 12 min · 16:00
  Semana
    █████┃▏░░░░░░░░░░░░░░  29 % restante
    Se reinicia en 1 d 19 h · sáb, 8:48
  Semana · Fable
    ███▍░┃░░░░░░░░░░░░░░░  16 % restante
    Se reinicia en 1 d 19 h · sáb, 8:48
    ! Se agota en 23 h
  Crédito extra
    $3.20 gastados de $20.00

Antigravity  ● Valores de hace 47 min
  Modelos Gemini · 5 horas
    █▌░░░░░░░┃░░░░░░░░░░░   7 % restante
    Se reinicia en 1 h 26 min · 15:14
    ! A este ritmo, ya agotada (13:13)
  Modelos Claude y GPT
    █████████████┃████▌░░  88 % restante
    Se reinicia en 4 d 11 h · mar, 0:48
  ! Antigravity no ha indicado ninguna
    cuota.

Codex  ● No disponible
  ! No se encuentra Codex CLI.
    Solución: vellmark setup codex
=== 60 columns
Claude Code  ● Queda poco
  Max 20x · somebody.with.a.long.name@department.example.org
  Sesión                    ███████┃░░░░░░░░░  46 % restante
                            Se reinicia en 2 h 12 min ·
                            16:00
  Semana                    ████┃░░░░░░░░░░░░  29 % restante
                            Se reinicia en 1 d 19 h · sáb,
                            8:48
  Semana · Fable            ██▊░┃░░░░░░░░░░░░  16 % restante
                            Se reinicia en 1 d 19 h · sáb,
                            8:48
                            ! Se agota en 23 h
  Crédito extra             $3.20 gastados de $20.00

Antigravity  ● Valores de hace 47 min
  Modelos Gemini · 5 horas  █▎░░░░░░┃░░░░░░░░   7 % restante
                            Se reinicia en 1 h 26 min ·
                            15:14
                            ! A este ritmo, ya agotada
                              (13:13)
  Modelos Claude y GPT      ███████████┃███░░  88 % restante
                            Se reinicia en 4 d 11 h · mar,
                            0:48
  ! Antigravity no ha indicado ninguna cuota.

Codex  ● No disponible
  ! No se encuentra Codex CLI.
    Solución: vellmark setup codex
=== 80 columns
Claude Code  ● Queda poco
  Max 20x · somebody.with.a.long.name@department.example.org
  Sesión                    ████████████████┃░░░░░░░░░░░░░░░░░░░░  46 % restante
                            Se reinicia en 2 h 12 min · 16:00
  Semana                    █████████┃▊░░░░░░░░░░░░░░░░░░░░░░░░░░  29 % restante
                            Se reinicia en 1 d 19 h · sáb, 8:48
  Semana · Fable            █████▉░░░┃░░░░░░░░░░░░░░░░░░░░░░░░░░░  16 % restante
                            Se reinicia en 1 d 19 h · sáb, 8:48
                            ! Se agota en 23 h, 19 h antes del reinicio
  Crédito extra             $3.20 gastados de $20.00

Antigravity  ● Valores de hace 47 min
  Modelos Gemini · 5 horas  ██▋░░░░░░░░░░░░░┃░░░░░░░░░░░░░░░░░░░░   7 % restante
                            Se reinicia en 1 h 26 min · 15:14
                            ! A este ritmo, ya agotada (13:13)
  Modelos Claude y GPT      ████████████████████████┃███████▌░░░░  88 % restante
                            Se reinicia en 4 d 11 h · mar, 0:48
  ! Antigravity no ha indicado ninguna cuota.

Codex  ● No disponible
  ! No se encuentra Codex CLI.
    Solución: vellmark setup codex
=== 120 columns
Claude Code  ● Queda poco  Max 20x · somebody.with.a.long.name@department.example.org
  Sesión                    ██████████████████┃░░░░░░░░░░░░░░░░░░░░░  46 % restante  Se reinicia en 2 h 12 min · 16:00
  Semana                    ██████████┃▋░░░░░░░░░░░░░░░░░░░░░░░░░░░░  29 % restante  Se reinicia en 1 d 19 h · sáb, 8:48
  Semana · Fable            ██████▍░░░┃░░░░░░░░░░░░░░░░░░░░░░░░░░░░░  16 % restante  Se reinicia en 1 d 19 h · sáb, 8:48
                            ! Se agota en 23 h, 19 h antes del reinicio
  Crédito extra             $3.20 gastados de $20.00

Antigravity  ● Valores de hace 47 min
  Modelos Gemini · 5 horas  ██▊░░░░░░░░░░░░░░░┃░░░░░░░░░░░░░░░░░░░░░   7 % restante  Se reinicia en 1 h 26 min · 15:14
                            ! A este ritmo, ya agotada (13:13)
  Modelos Claude y GPT      ██████████████████████████┃████████▎░░░░  88 % restante  Se reinicia en 4 d 11 h · mar, 0:48
  ! Antigravity no ha indicado ninguna cuota.

Codex  ● No disponible
  ! No se encuentra Codex CLI.
    Solución: vellmark setup codex
=== 200 columns
Claude Code  ● Queda poco  Max 20x · somebody.with.a.long.name@department.example.org
  Sesión                    █████████████████████████████████████████████████████┃█▎░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░  46 % restante  Se reinicia en 2 h 12 min · 16:00
  Semana                    ███████████████████████████████┃██▊░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░  29 % restante  Se reinicia en 1 d 19 h · sáb, 8:48
  Semana · Fable            ███████████████████▎░░░░░░░░░░░┃░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░  16 % restante  Se reinicia en 1 d 19 h · sáb, 8:48
                            ! Se agota en 23 h, 19 h antes del reinicio
  Crédito extra             $3.20 gastados de $20.00

Antigravity  ● Valores de hace 47 min
  Modelos Gemini · 5 horas  ████████▍░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░┃░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░   7 % restante  Se reinicia en 1 h 26 min · 15:14
                            ! A este ritmo, ya agotada (13:13)
  Modelos Claude y GPT      █████████████████████████████████████████████████████████████████████████████┃███████████████████████████▋░░░░░░░░░░░░░░  88 % restante  Se reinicia en 4 d 11 h · mar, 0:48
  ! Antigravity no ha indicado ninguna cuota.

Codex  ● No disponible
  ! No se encuentra Codex CLI.
    Solución: vellmark setup codex
