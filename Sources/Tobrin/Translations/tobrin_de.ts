<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>AccessOfferCard</name>
    <message><source>Other programs can read your keyboard</source><translation>Andere Programme können deine Tastatur lesen</translation></message>
    <message><source>An older rule lets every program you run read it. Without the rule only Tobrin is told of keys. An administrator has to agree.</source><translation>Eine ältere Regel lässt jedes deiner Programme sie lesen. Ohne die Regel erfährt nur Tobrin von Tasten. Dem muss ein Verwalter zustimmen.</translation></message>
    <message><source>Remove the Rule…</source><translation>Regel entfernen …</translation></message>
    <message><source>Leave It</source><translation>So lassen</translation></message>
</context>
<context>
    <name>ForceMeter</name>
    <message><source>Type to see how hard you hit</source><translation>Tippe, um zu sehen, wie hart du anschlägst</translation></message>
</context>
<context>
    <name>ForceSection</name>
    <message><source>Force</source><translation>Anschlag</translation></message>
    <message><source>Feel how hard you type</source><translation>Spüren, wie hart du tippst</translation></message>
    <message><source>The motion sensor does not work: %1. Until it does, the fixed strength below is used.</source><translation>Der Bewegungssensor arbeitet nicht: %1. Bis er es tut, gilt die feste Stärke unten.</translation></message>
    <message><source>Sensitivity</source><translation>Empfindlichkeit</translation></message>
    <message><source>%1×</source><translation>%1×</translation></message>
    <message><source>The higher, the harder your strokes sound.</source><translation>Je höher, desto härter klingt dein Anschlag.</translation></message>
    <message><source>How hard every key sounds while none is measured.</source><translation>Wie hart jede Taste klingt, solange keine gemessen wird.</translation></message>
    <message><source>Strength</source><translation>Stärke</translation></message>
</context>
<context>
    <name>MenuHeader</name>
    <message><source>Sounds</source><translation>Töne</translation></message>
</context>
<context>
    <name>MenuView</name>
    <message><source>Type anything: it sounds in every app.</source><translation>Tippe irgendetwas: Es klingt in jedem Programm.</translation></message>
</context>
<context>
    <name>MoreHeldBack</name>
    <message><source>Programs That Type</source><translation>Programme, die tippen</translation></message>
    <message><source>What a program types for you stays silent: keyboards whose names hold one of these words. On X11, XTEST is that of xdotool, text expanders and remote desktops.</source><translation>Was ein Programm für dich tippt, bleibt still: Tastaturen, in deren Namen eines dieser Wörter steht. Unter X11 ist XTEST die von xdotool, von Textbausteinen und von Fernzugriff.</translation></message>
    <message><source>Take out %1</source><translation>%1 herausnehmen</translation></message>
    <message><source>Part of a keyboard's name</source><translation>Teil des Namens einer Tastatur</translation></message>
    <message><source>Add</source><translation>Hinzufügen</translation></message>
    <message><source>Usual Names</source><translation>Übliche Namen</translation></message>
</context>
<context>
    <name>MoreMouse</name>
    <message><source>Mouse</source><translation>Maus</translation></message>
    <message><source>Mouse buttons sound</source><translation>Maustasten klingen</translation></message>
    <message><source>The wheel sounds, too</source><translation>Auch das Mausrad klingt</translation></message>
    <message><source>Here Tobrin hears keyboards alone, and no mouse.</source><translation>Hier hört Tobrin nur Tastaturen, keine Maus.</translation></message>
    <message><source>The chosen pack has no sounds for a mouse.</source><translation>Das gewählte Paket hat keine Töne für eine Maus.</translation></message>
</context>
<context>
    <name>MorePage</name>
    <message><source>More</source><translation>Mehr</translation></message>
    <message><source>Back</source><translation>Zurück</translation></message>
</context>
<context>
    <name>MoreQuiet</name>
    <message><source>Quiet</source><translation>Stille</translation></message>
    <message><source>Quiet while the screen is locked</source><translation>Still bei gesperrtem Bildschirm</translation></message>
    <message><source>Here Tobrin isn't told what is typed while the screen is locked. Only an administrator can change that.</source><translation>Hier erfährt Tobrin nicht, was bei gesperrtem Bildschirm getippt wird. Das kann nur ein Verwalter ändern.</translation></message>
    <message><source>Mask keys while the sound is recorded</source><translation>Tasten verdecken, solange der Ton aufgenommen wird</translation></message>
    <message><source>Each key then gets the sound of another, so that a recording does not tell what you type.</source><translation>Jede Taste klingt dann wie eine andere, damit eine Aufnahme nicht verrät, was du tippst.</translation></message>
</context>
<context>
    <name>MoreQuietApps</name>
    <message><source>Quiet in %1</source><translation>Still in %1</translation></message>
    <message><source>Sound in %1 again</source><translation>In %1 wieder tönen</translation></message>
    <message><source>To have Tobrin quiet in an app, go to that app and open this page again.</source><translation>Damit Tobrin in einem Programm still ist, geh zu diesem Programm und öffne diese Seite noch einmal.</translation></message>
    <message><source>Quiet in full-screen apps</source><translation>Still in Programmen, die den Bildschirm füllen</translation></message>
</context>
<context>
    <name>MoreSound</name>
    <message><source>Sound</source><translation>Klang</translation></message>
    <message><source>Plays on</source><translation>Spielt auf</translation></message>
    <message><source>Louder</source><translation>Lauter</translation></message>
    <message><source>%1 %</source><translation>%1 %</translation></message>
    <message><source>Makes keys louder than their pack has them, up to twice as loud. Hard strokes grow less, so that nothing is distorted. Volume and this are kept for each device.</source><translation>Macht Tasten lauter, als ihr Paket sie hat, bis zum Doppelten. Harte Anschläge wachsen weniger, damit nichts verzerrt. Lautstärke und dies gelten für jedes Gerät einzeln.</translation></message>
</context>
<context>
    <name>OptionsSection</name>
    <message><source>More…</source><translation>Mehr …</translation></message>
    <message><source>Output, quiet apps, mouse</source><translation>Ausgabe, stille Programme, Maus</translation></message>
    <message><source>Key release sounds</source><translation>Töne beim Loslassen</translation></message>
    <message><source>Stereo by key position</source><translation>Stereo nach Lage der Taste</translation></message>
    <message><source>Quiet during calls</source><translation>Still bei Anrufen</translation></message>
    <message><source>Pause while any app is using the microphone, and resume when it's free. Tobrin never listens to it.</source><translation>Pause, solange ein Programm das Mikrofon benutzt, und weiter, wenn es frei ist. Tobrin hört nie mit.</translation></message>
    <message><source>Open at login</source><translation>Beim Anmelden öffnen</translation></message>
    <message><source>Access to the keyboard</source><translation>Zugriff auf die Tastatur</translation></message>
    <message><source>Take Back</source><translation>Zurücknehmen</translation></message>
</context>
<context>
    <name>PackDetail</name>
    <message><source>Try Again</source><translation>Noch einmal</translation></message>
</context>
<context>
    <name>PackGrid</name>
    <message><source>Find a pack</source><translation>Paket suchen</translation></message>
    <message><source>No pack is called that.</source><translation>So heißt kein Paket.</translation></message>
    <message><source>Packs</source><translation>Pakete</translation></message>
</context>
<context>
    <name>PackSection</name>
    <message><source>Sound</source><translation>Klang</translation></message>
    <message><source>Preview</source><translation>Anhören</translation></message>
    <message><source>Move %1 to the trash</source><translation>%1 in den Papierkorb legen</translation></message>
    <message><source>Record Your Keyboard…</source><translation>Deine Tastatur aufnehmen …</translation></message>
    <message><source>Makes a pack of the keyboard under your hands, with a microphone.</source><translation>Macht mit einem Mikrofon ein Paket aus der Tastatur unter deinen Händen.</translation></message>
</context>
<context>
    <name>PackWork</name>
    <message><source>Cancel</source><translation>Abbrechen</translation></message>
    <message><source>Undo</source><translation>Rückgängig</translation></message>
</context>
<context>
    <name>PanelFooter</name>
    <message><source>Packs Folder…</source><translation>Paketordner …</translation></message>
    <message><source>Add Pack…</source><translation>Hinzufügen …</translation></message>
    <message><source>Packs, archives and folders can also be dropped on this panel.</source><translation>Pakete, Archive und Ordner lassen sich auch auf dieses Fenster ziehen.</translation></message>
    <message><source>Quit</source><translation>Beenden</translation></message>
</context>
<context>
    <name>PermissionCard</name>
    <message><source>It only uses key presses to pick a sound. It never records or sends what you type.</source><translation>Es wählt mit den Tastendrücken nur einen Klang aus. Es zeichnet nie auf und sendet nie, was du tippst.</translation></message>
    <message><source>Relaunch Tobrin</source><translation>Tobrin neu starten</translation></message>
</context>
<context>
    <name>ShortcutField</name>
    <message><source>Press a key with Ctrl, Alt or Super…</source><translation>Drücke eine Taste mit Strg, Alt oder Super …</translation></message>
    <message><source>Push to choose other keys</source><translation>Drücken, um andere Tasten zu wählen</translation></message>
    <message><source>Shortcut keys: %1</source><translation>Tasten des Kürzels: %1</translation></message>
</context>
<context>
    <name>ShortcutSection</name>
    <message><source>Shortcut</source><translation>Tastenkürzel</translation></message>
    <message><source>Turn sounds on/off with</source><translation>Töne an und aus mit</translation></message>
</context>
<context>
    <name>Theme</name>
    <message><source>Soft</source><translation>Sanft</translation></message>
    <message><source>Medium</source><translation>Mittel</translation></message>
    <message><source>Hard</source><translation>Hart</translation></message>
    <message><source>Slam</source><translation>Heftig</translation></message>
</context>
<context>
    <name>TitleBar</name>
    <message><source>Close</source><translation>Schließen</translation></message>
</context>
<context>
    <name>VolumeSection</name>
    <message><source>Unmute</source><translation>Ton an</translation></message>
    <message><source>Mute</source><translation>Stumm</translation></message>
    <message><source>Volume</source><translation>Lautstärke</translation></message>
    <message><source>%1 %</source><translation>%1 %</translation></message>
</context>
<context>
    <name>tobrin::PackChooser</name>
    <message><source>Add packs</source><translation>Pakete hinzufügen</translation></message>
    <message><source>Add</source><translation>Hinzufügen</translation></message>
    <message><source>Sound packs</source><translation>Klangpakete</translation></message>
    <message><source>All files</source><translation>Alle Dateien</translation></message>
</context>
<context>
    <name>tobrin::PackShelfModel</name>
    <message><source>Adding %1…</source><translation>%1 wird hinzugefügt …</translation></message>
    <message><source>%1 is in the trash.</source><translation>%1 liegt im Papierkorb.</translation></message>
    <message><source>Drop packs here: files, archives or folders.</source><translation>Zieh Pakete hierher: Dateien, Archive oder Ordner.</translation></message>
</context>
<context>
    <name>tobrin::PanelModel</name>
    <message><source>No pack</source><translation>Kein Paket</translation></message>
    <message><source>Sounds are off.</source><translation>Die Töne sind aus.</translation></message>
    <message><source>Sounds pause while the mic is in use.</source><translation>Die Töne pausieren, solange das Mikrofon benutzt wird.</translation></message>
    <message><source>The volume is at 0.</source><translation>Die Lautstärke steht auf 0.</translation></message>
    <message><source>Last key: %1× a typical keystroke (%2 g)</source><translation>Letzte Taste: das %1-Fache eines gewöhnlichen Anschlags (%2 g)</translation></message>
</context>
<context>
    <name>tobrin::QuietAppsModel</name>
    <message><source>This desktop does not tell which app is in front.</source><translation>Dieser Desktop sagt nicht, welches Programm vorn ist.</translation></message>
    <message><source>No window manager tells which app is in front.</source><translation>Keine Fensterverwaltung sagt, welches Programm vorn ist.</translation></message>
</context>
<context>
    <name>tobrin::TrayInterface</name>
    <message><source>Sounds</source><translation>Töne</translation></message>
    <message><source>Sound</source><translation>Klang</translation></message>
    <message><source>Open Tobrin</source><translation>Tobrin öffnen</translation></message>
    <message><source>Quit</source><translation>Beenden</translation></message>
</context>
<context>
    <name>sentences</name>
    <message><source>No sound</source><translation>Kein Ton</translation></message>
    <message><source>%1 can't be played</source><translation>%1 lässt sich nicht abspielen</translation></message>
    <message><source>Off</source><translation>Aus</translation></message>
    <message><source>Paused while another session is in front</source><translation>Pause, solange eine andere Sitzung vorn ist</translation></message>
    <message><source>Paused while the screen is locked</source><translation>Pause, solange der Bildschirm gesperrt ist</translation></message>
    <message><source>Paused while the mic is in use</source><translation>Pause, solange das Mikrofon benutzt wird</translation></message>
    <message><source>Quiet in full screen</source><translation>Still bei vollem Bildschirm</translation></message>
    <message><source>Quiet in this app</source><translation>Still in diesem Programm</translation></message>
    <message><source>Quiet in %1</source><translation>Still in %1</translation></message>
    <message><source>Muted</source><translation>Stumm</translation></message>
    <message><source>Fixed strength</source><translation>Feste Stärke</translation></message>
    <message><source>Force sensing on</source><translation>Anschlag wird gemessen</translation></message>
    <message><source>Fixed strength, sensor fails</source><translation>Feste Stärke, Sensor gestört</translation></message>
    <message><source>No pack</source><translation>Kein Paket</translation></message>
    <message><source>%1 holds no pack in a format that Tobrin knows.</source><translation>%1 enthält kein Paket in einem Format, das Tobrin kennt.</translation></message>
    <message><source>%1 holds sounds for a mouse, not for keys.</source><translation>%1 enthält Töne für eine Maus, nicht für Tasten.</translation></message>
    <message><source>%1 is too large for a pack.</source><translation>%1 ist zu groß für ein Paket.</translation></message>
    <message><source>%1 holds no sounds that can be played.</source><translation>%1 enthält keine Töne, die sich abspielen lassen.</translation></message>
    <message><source>%1 can't be added: %2.</source><translation>%1 lässt sich nicht hinzufügen: %2.</translation></message>
    <message><source>%1 can't be moved to the trash: %2.</source><translation>%1 lässt sich nicht in den Papierkorb legen: %2.</translation></message>
    <message><source>%1 can't be brought back: %2.</source><translation>%1 lässt sich nicht zurückholen: %2.</translation></message>
    <message><source>Others that failed: %1.</source><translation>Außerdem nicht gelungen: %1.</translation></message>
    <message><source>%1 is already used by another app. Pick another.</source><translation>%1 benutzt schon ein anderes Programm. Wähle ein anderes.</translation></message>
    <message><source>Couldn't set up %1 (error %2).</source><translation>%1 ließ sich nicht einrichten (Fehler %2).</translation></message>
    <message><source>%1 in any app to turn sounds on or off</source><translation>%1 schaltet in jedem Programm die Töne an und aus</translation></message>
    <message><source>. The desktop's settings can change the keys.</source><translation>. Die Tasten lassen sich in den Einstellungen der Arbeitsumgebung ändern.</translation></message>
    <message><source>. Other apps see these keys too.</source><translation>. Andere Programme sehen diese Tasten auch.</translation></message>
    <message><source>Needs access to the keyboard</source><translation>Braucht Zugriff auf die Tastatur</translation></message>
    <message><source>Tobrin needs access to the keyboard</source><translation>Tobrin braucht Zugriff auf die Tastatur</translation></message>
    <message><source>Allow Access…</source><translation>Zugriff erlauben …</translation></message>
    <message><source>An administrator allows it once; then only Tobrin is told which keys go down and up, and only while you sit here.</source><translation>Das erlaubt ein Verwalter einmal; danach erfährt nur Tobrin, welche Tasten gedrückt und losgelassen werden, und nur solange du hier sitzt.</translation></message>
    <message><source>Force sensing needs a laptop with a fast motion sensor. Pick a fixed strength instead.</source><translation>Um den Anschlag zu messen, braucht es einen Laptop mit schnellem Bewegungssensor. Wähle stattdessen eine feste Stärke.</translation></message>
    <message><source> is a system shortcut (the desktop's keyboard settings). Pick another.</source><translation> gehört der Arbeitsumgebung (deren Tastatureinstellungen). Wähle ein anderes.</translation></message>
    <message><source>Masked while the sound is recorded</source><translation>Verdeckt, solange der Ton aufgenommen wird</translation></message>
    <message><source>Recording your keyboard</source><translation>Deine Tastatur wird aufgenommen</translation></message>
</context>
<context>
    <name>RecordPage</name>
    <message><source>Record Your Keyboard</source><translation>Deine Tastatur aufnehmen</translation></message>
    <message><source>Cancel</source><translation>Abbrechen</translation></message>
    <message><source>Nothing of the recording is kept.</source><translation>Von der Aufnahme bleibt nichts.</translation></message>
</context>
<context>
    <name>RecordMicrophone</name>
    <message><source>Two minutes of typing make a sound pack of the keyboard under your hands. Put the microphone near the keys.</source><translation>Zwei Minuten Tippen machen ein Tonpaket aus der Tastatur unter deinen Händen. Stelle das Mikrofon nahe an die Tasten.</translation></message>
    <message><source>The microphone is on only on these pages. Which keys you press is never written down, but the sound of typing can give it away: type nothing secret.</source><translation>Das Mikrofon ist nur auf diesen Seiten an. Welche Tasten du drückst, wird nirgends festgehalten, aber der Klang des Tippens kann es verraten: Tippe nichts Geheimes.</translation></message>
    <message><source>Microphone</source><translation>Mikrofon</translation></message>
    <message><source>Type here to try it</source><translation>Tippe hier zum Ausprobieren</translation></message>
    <message><source>Start</source><translation>Starten</translation></message>
</context>
<context>
    <name>LevelMeter</name>
    <message><source>Level of the microphone</source><translation>Pegel des Mikrofons</translation></message>
</context>
<context>
    <name>RecordTyping</name>
    <message><source>Paused. Nothing is recorded.</source><translation>Angehalten. Nichts wird aufgenommen.</translation></message>
    <message><source>Type here</source><translation>Tippe hier</translation></message>
    <message><source>Resume</source><translation>Weiter</translation></message>
    <message><source>Pause</source><translation>Anhalten</translation></message>
    <message><source>Skip</source><translation>Überspringen</translation></message>
    <message><source>On to the next, where the keyboard has no such key.</source><translation>Zum Nächsten, wenn die Tastatur keine solche Taste hat.</translation></message>
    <message><source>Finish</source><translation>Fertig</translation></message>
    <message><source>Make a pack of what there is.</source><translation>Aus dem, was da ist, ein Paket machen.</translation></message>
</context>
<context>
    <name>RecordCount</name>
    <message><source>%1: %2 of %3</source><translation>%1: %2 von %3</translation></message>
</context>
<context>
    <name>RecordBuilding</name>
    <message><source>Making your pack…</source><translation>Dein Paket entsteht …</translation></message>
</context>
<context>
    <name>RecordResult</name>
    <message><source>This is your keyboard. Type anything to hear it.</source><translation>Das ist deine Tastatur. Tippe irgendetwas, um sie zu hören.</translation></message>
    <message><source>Name</source><translation>Name</translation></message>
    <message><source>My Keyboard</source><translation>Meine Tastatur</translation></message>
    <message><source>Name of the pack</source><translation>Name des Pakets</translation></message>
    <message><source>Listen</source><translation>Anhören</translation></message>
    <message><source>Type More</source><translation>Mehr tippen</translation></message>
    <message><source>Keep</source><translation>Behalten</translation></message>
</context>
<context>
    <name>tobrin::SoundModel</name>
    <message><source>System default</source><translation>Vorgabe des Systems</translation></message>
    <message><source>%1 (away)</source><translation>%1 (nicht da)</translation></message>
    <message><source>It sounds on %1 now.</source><translation>Es klingt jetzt auf %1.</translation></message>
</context>
<context>
    <name>tobrin::RecordingModel</name>
    <message><source>This microphone's sound is filtered, which changes the sound of keys.</source><translation>Der Ton dieses Mikrofons wird gefiltert, was den Klang der Tasten verändert.</translation></message>
    <message><source>Type a few keys.</source><translation>Tippe ein paar Tasten.</translation></message>
    <message><source>This microphone does not hear your keys. Is it the right one, and switched on?</source><translation>Dieses Mikrofon hört deine Tasten nicht. Ist es das richtige und eingeschaltet?</translation></message>
    <message><source>Too quiet. Bring the microphone nearer or turn it up.</source><translation>Zu leise. Bringe das Mikrofon näher oder stelle es lauter.</translation></message>
    <message><source>Too loud. Turn the microphone down or move it away.</source><translation>Zu laut. Stelle das Mikrofon leiser oder rücke es weg.</translation></message>
    <message><source>It is too noisy here: fans, music, voices.</source><translation>Hier ist es zu unruhig: Lüfter, Musik, Stimmen.</translation></message>
    <message><source>%1 of %2 presses and releases sound good.</source><translation>%1 von %2 Anschlägen und Loslassern klingen gut.</translation></message>
    <message><source>That sounds good.</source><translation>Das klingt gut.</translation></message>
    <message><source>the quick brown fox jumps over the lazy dog</source><translation>zwölf boxkämpfer jagen viktor quer über den großen sylter deich</translation></message>
    <message><source>Softly</source><translation>Leise</translation></message>
    <message><source>Type softly, as if somebody slept next door.</source><translation>Tippe leise, als schliefe jemand nebenan.</translation></message>
    <message><source>As usual</source><translation>Wie sonst</translation></message>
    <message><source>Now type as you usually do.</source><translation>Tippe nun, wie du es sonst tust.</translation></message>
    <message><source>Hard</source><translation>Hart</translation></message>
    <message><source>Now hit the keys hard.</source><translation>Schlage die Tasten nun hart an.</translation></message>
    <message><source>Space Bar</source><translation>Leertaste</translation></message>
    <message><source>Press the space bar, softly and hard, with pauses.</source><translation>Drücke die Leertaste, leise und hart, mit Pausen.</translation></message>
    <message><source>Return</source><translation>Eingabetaste</translation></message>
    <message><source>Press Return, softly and hard.</source><translation>Drücke die Eingabetaste, leise und hart.</translation></message>
    <message><source>Backspace</source><translation>Rücktaste</translation></message>
    <message><source>Press Backspace, softly and hard.</source><translation>Drücke die Rücktaste, leise und hart.</translation></message>
    <message><source>Shift and Others</source><translation>Umschalt und andere</translation></message>
    <message><source>Press Shift, Ctrl and Alt one by one.</source><translation>Drücke Umschalt, Strg und Alt, eine nach der anderen.</translation></message>
</context>
</TS>
