=== 40 columns
● Crítico · Antigravity
  Modelos Gemini · 5 horas 7 % restante
  Se reinicia en 1 h 26 min · 15:14
  Valores de hace 2 min
=== 60 columns
● Crítico · Antigravity
  Modelos Gemini · 5 horas 7 % restante
  Se reinicia en 1 h 26 min · 15:14 · Valores de hace 2 min
=== 80 columns
● Crítico · Antigravity · Modelos Gemini · 5 horas 7 % restante
  Se reinicia en 1 h 26 min · 15:14 · Valores de hace 2 min
=== 120 columns
● Crítico · Antigravity · Modelos Gemini · 5 horas 7 % restante · Se reinicia en 1 h 26 min · 15:14
  Valores de hace 2 min
=== 200 columns
● Crítico · Antigravity · Modelos Gemini · 5 horas 7 % restante · Se reinicia en 1 h 26 min · 15:14 · Valores de hace 2 min
