=== 40 columns
Muestra cuánto queda de las cuotas de
tus agentes de IA.

Uso: vellmark [OPCIONES] [COMANDO
[ARGUMENTOS]]

Comandos:
  usage
      Leer todos los agentes y mostrar
      lo que queda
  status
      Una línea para barras de estado y
      prompts
  watch
      Leer una y otra vez y mostrar en
      el terminal
  statusline
      La línea de estado de Claude Code:
      lo que queda
  history
      El historial registrado
  metrics
      Mostrar las últimas lecturas para
      la supervisión (OpenMetrics)
  log
      El registro de actividad
  agents
      Listar los agentes: activo,
      sesión, versión, programa
  settings
      Listar, mostrar o cambiar los
      ajustes
  inspect
      Interpretar una salida guardada de
      un agente
  setup
      Instalar los agentes e iniciar
      sesión en ellos
  setup-script
      Mostrar el script que instala un
      agente o inicia sesión en él
  report
      Crear un informe de soporte sin
      secretos
  redact
      Quitar de un texto secretos,
      nombres de usuario y direcciones
  completions
      Mostrar el script con el que una
      shell completa argumentos
  man
      Mostrar la página de manual del
      programa o de un comando
  help
      Esta ayuda o la de un comando

Opciones:
  -h, --help
      Esta ayuda
  -V, --version
      La versión del programa
  --language LANG
      Idioma de la salida: de, en, fr,
      it o es (si no, el de los ajustes)
  --color WHEN
      Colores: auto, always o never
      (auto)
  --demo
      Con agentes simulados en una
      carpeta desechable
  --sandbox DIR
      Para desarrolladores: examinar la
      carpeta DIR en lugar de este
      ordenador

Sin comando: usage. “vellmark help
COMANDO” explica un comando.
Interpretar una salida guardada de un
agente

Uso: vellmark inspect [OPCIONES] AGENT
[FILE]

Argumentos:
  AGENT
      claude, codex o antigravity
  FILE
      La salida: para claude, la
      respuesta a la consulta o la
      grabación de la sesión; para
      codex, lo que escribió “codex
      app-server”; para antigravity, lo
      que mostró “agy”; sin FILE o con
      “-”, la entrada estándar

Opciones:
  --now T
      El instante que cuenta como ahora:
      segundos desde 1970-01-01 UTC o
      ISO 8601 con zona horaria
  --exit-status N
      Código de salida de la CLI (si no,
      0)
  --timed-out
      La CLI se terminó al agotarse su
      tiempo
  --log FILE
      El archivo de registro de “agy”

Para todos los comandos:
  -h, --help
      Esta ayuda
  -V, --version
      La versión del programa
  --language LANG
      Idioma de la salida: de, en, fr,
      it o es (si no, el de los ajustes)
  --color WHEN
      Colores: auto, always o never
      (auto)
  --sandbox DIR
      Para desarrolladores: examinar la
      carpeta DIR en lugar de este
      ordenador

Para informes de error: muestra en JSON
lo que Vellmark lee de la salida. No
escribe archivos ni inicia nada. Termina
con 1 si no hay nada que leer.
=== 60 columns
Muestra cuánto queda de las cuotas de tus agentes de IA.

Uso: vellmark [OPCIONES] [COMANDO [ARGUMENTOS]]

Comandos:
  usage            Leer todos los agentes y mostrar lo que
                   queda
  status           Una línea para barras de estado y prompts
  watch            Leer una y otra vez y mostrar en el
                   terminal
  statusline       La línea de estado de Claude Code: lo que
                   queda
  history          El historial registrado
  metrics          Mostrar las últimas lecturas para la
                   supervisión (OpenMetrics)
  log              El registro de actividad
  agents           Listar los agentes: activo, sesión,
                   versión, programa
  settings         Listar, mostrar o cambiar los ajustes
  inspect          Interpretar una salida guardada de un
                   agente
  setup            Instalar los agentes e iniciar sesión en
                   ellos
  setup-script     Mostrar el script que instala un agente o
                   inicia sesión en él
  report           Crear un informe de soporte sin secretos
  redact           Quitar de un texto secretos, nombres de
                   usuario y direcciones
  completions      Mostrar el script con el que una shell
                   completa argumentos
  man              Mostrar la página de manual del programa
                   o de un comando
  help             Esta ayuda o la de un comando

Opciones:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es
                   (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --demo           Con agentes simulados en una carpeta
                   desechable
  --sandbox DIR    Para desarrolladores: examinar la carpeta
                   DIR en lugar de este ordenador

Sin comando: usage. “vellmark help COMANDO” explica un
comando.
Interpretar una salida guardada de un agente

Uso: vellmark inspect [OPCIONES] AGENT [FILE]

Argumentos:
  AGENT            claude, codex o antigravity
  FILE             La salida: para claude, la respuesta a la
                   consulta o la grabación de la sesión;
                   para codex, lo que escribió “codex
                   app-server”; para antigravity, lo que
                   mostró “agy”; sin FILE o con “-”, la
                   entrada estándar

Opciones:
  --now T          El instante que cuenta como ahora:
                   segundos desde 1970-01-01 UTC o ISO 8601
                   con zona horaria
  --exit-status N  Código de salida de la CLI (si no, 0)
  --timed-out      La CLI se terminó al agotarse su tiempo
  --log FILE       El archivo de registro de “agy”

Para todos los comandos:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es
                   (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --sandbox DIR    Para desarrolladores: examinar la carpeta
                   DIR en lugar de este ordenador

Para informes de error: muestra en JSON lo que Vellmark lee
de la salida. No escribe archivos ni inicia nada. Termina
con 1 si no hay nada que leer.
=== 80 columns
Muestra cuánto queda de las cuotas de tus agentes de IA.

Uso: vellmark [OPCIONES] [COMANDO [ARGUMENTOS]]

Comandos:
  usage            Leer todos los agentes y mostrar lo que queda
  status           Una línea para barras de estado y prompts
  watch            Leer una y otra vez y mostrar en el terminal
  statusline       La línea de estado de Claude Code: lo que queda
  history          El historial registrado
  metrics          Mostrar las últimas lecturas para la supervisión
                   (OpenMetrics)
  log              El registro de actividad
  agents           Listar los agentes: activo, sesión, versión, programa
  settings         Listar, mostrar o cambiar los ajustes
  inspect          Interpretar una salida guardada de un agente
  setup            Instalar los agentes e iniciar sesión en ellos
  setup-script     Mostrar el script que instala un agente o inicia sesión en él
  report           Crear un informe de soporte sin secretos
  redact           Quitar de un texto secretos, nombres de usuario y direcciones
  completions      Mostrar el script con el que una shell completa argumentos
  man              Mostrar la página de manual del programa o de un comando
  help             Esta ayuda o la de un comando

Opciones:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los
                   ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --demo           Con agentes simulados en una carpeta desechable
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de
                   este ordenador

Sin comando: usage. “vellmark help COMANDO” explica un comando.
Interpretar una salida guardada de un agente

Uso: vellmark inspect [OPCIONES] AGENT [FILE]

Argumentos:
  AGENT            claude, codex o antigravity
  FILE             La salida: para claude, la respuesta a la consulta o la
                   grabación de la sesión; para codex, lo que escribió “codex
                   app-server”; para antigravity, lo que mostró “agy”; sin FILE
                   o con “-”, la entrada estándar

Opciones:
  --now T          El instante que cuenta como ahora: segundos desde 1970-01-01
                   UTC o ISO 8601 con zona horaria
  --exit-status N  Código de salida de la CLI (si no, 0)
  --timed-out      La CLI se terminó al agotarse su tiempo
  --log FILE       El archivo de registro de “agy”

Para todos los comandos:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los
                   ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de
                   este ordenador

Para informes de error: muestra en JSON lo que Vellmark lee de la salida. No
escribe archivos ni inicia nada. Termina con 1 si no hay nada que leer.
=== 120 columns
Muestra cuánto queda de las cuotas de tus agentes de IA.

Uso: vellmark [OPCIONES] [COMANDO [ARGUMENTOS]]

Comandos:
  usage            Leer todos los agentes y mostrar lo que queda
  status           Una línea para barras de estado y prompts
  watch            Leer una y otra vez y mostrar en el terminal
  statusline       La línea de estado de Claude Code: lo que queda
  history          El historial registrado
  metrics          Mostrar las últimas lecturas para la supervisión (OpenMetrics)
  log              El registro de actividad
  agents           Listar los agentes: activo, sesión, versión, programa
  settings         Listar, mostrar o cambiar los ajustes
  inspect          Interpretar una salida guardada de un agente
  setup            Instalar los agentes e iniciar sesión en ellos
  setup-script     Mostrar el script que instala un agente o inicia sesión en él
  report           Crear un informe de soporte sin secretos
  redact           Quitar de un texto secretos, nombres de usuario y direcciones
  completions      Mostrar el script con el que una shell completa argumentos
  man              Mostrar la página de manual del programa o de un comando
  help             Esta ayuda o la de un comando

Opciones:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --demo           Con agentes simulados en una carpeta desechable
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de este ordenador

Sin comando: usage. “vellmark help COMANDO” explica un comando.
Interpretar una salida guardada de un agente

Uso: vellmark inspect [OPCIONES] AGENT [FILE]

Argumentos:
  AGENT            claude, codex o antigravity
  FILE             La salida: para claude, la respuesta a la consulta o la grabación de la sesión;
                   para codex, lo que escribió “codex app-server”; para antigravity, lo que mostró
                   “agy”; sin FILE o con “-”, la entrada estándar

Opciones:
  --now T          El instante que cuenta como ahora: segundos desde 1970-01-01 UTC o ISO 8601 con
                   zona horaria
  --exit-status N  Código de salida de la CLI (si no, 0)
  --timed-out      La CLI se terminó al agotarse su tiempo
  --log FILE       El archivo de registro de “agy”

Para todos los comandos:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de este ordenador

Para informes de error: muestra en JSON lo que Vellmark lee de la salida. No escribe archivos ni
inicia nada. Termina con 1 si no hay nada que leer.
=== 200 columns
Muestra cuánto queda de las cuotas de tus agentes de IA.

Uso: vellmark [OPCIONES] [COMANDO [ARGUMENTOS]]

Comandos:
  usage            Leer todos los agentes y mostrar lo que queda
  status           Una línea para barras de estado y prompts
  watch            Leer una y otra vez y mostrar en el terminal
  statusline       La línea de estado de Claude Code: lo que queda
  history          El historial registrado
  metrics          Mostrar las últimas lecturas para la supervisión (OpenMetrics)
  log              El registro de actividad
  agents           Listar los agentes: activo, sesión, versión, programa
  settings         Listar, mostrar o cambiar los ajustes
  inspect          Interpretar una salida guardada de un agente
  setup            Instalar los agentes e iniciar sesión en ellos
  setup-script     Mostrar el script que instala un agente o inicia sesión en él
  report           Crear un informe de soporte sin secretos
  redact           Quitar de un texto secretos, nombres de usuario y direcciones
  completions      Mostrar el script con el que una shell completa argumentos
  man              Mostrar la página de manual del programa o de un comando
  help             Esta ayuda o la de un comando

Opciones:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --demo           Con agentes simulados en una carpeta desechable
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de este ordenador

Sin comando: usage. “vellmark help COMANDO” explica un comando.
Interpretar una salida guardada de un agente

Uso: vellmark inspect [OPCIONES] AGENT [FILE]

Argumentos:
  AGENT            claude, codex o antigravity
  FILE             La salida: para claude, la respuesta a la consulta o la grabación de la sesión;
                   para codex, lo que escribió “codex app-server”; para antigravity, lo que mostró
                   “agy”; sin FILE o con “-”, la entrada estándar

Opciones:
  --now T          El instante que cuenta como ahora: segundos desde 1970-01-01 UTC o ISO 8601 con
                   zona horaria
  --exit-status N  Código de salida de la CLI (si no, 0)
  --timed-out      La CLI se terminó al agotarse su tiempo
  --log FILE       El archivo de registro de “agy”

Para todos los comandos:
  -h, --help       Esta ayuda
  -V, --version    La versión del programa
  --language LANG  Idioma de la salida: de, en, fr, it o es (si no, el de los ajustes)
  --color WHEN     Colores: auto, always o never (auto)
  --sandbox DIR    Para desarrolladores: examinar la carpeta DIR en lugar de este ordenador

Para informes de error: muestra en JSON lo que Vellmark lee de la salida. No escribe archivos ni
inicia nada. Termina con 1 si no hay nada que leer.
