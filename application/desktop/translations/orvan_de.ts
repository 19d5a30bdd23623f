<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AdditionWords</name>
    <message>
        <source>Added: %1 in %2.</source>
        <comment>the kind of a source and its path</comment>
        <translation>Hinzugefügt: %1 in %2.</translation>
    </message>
    <message>
        <source>%1 is on the list already.</source>
        <translation>%1 steht schon auf der Liste.</translation>
    </message>
    <message>
        <source>%1 lies inside %2, which is read already.</source>
        <translation>%1 liegt in %2, was schon gelesen wird.</translation>
    </message>
    <message>
        <source>%2 lies inside %1. Remove that first.</source>
        <translation>%2 liegt in %1. Entferne das zuerst.</translation>
    </message>
</context>
<context>
    <name>AddressesSection</name>
    <message>
        <source>Your addresses</source>
        <translation>Deine Adressen</translation>
    </message>
    <message>
        <source>By these Orvan tells what you wrote, and what was written to you. After a change, mail and calendars are read again from their beginning.</source>
        <translation>An ihnen erkennt Orvan, was du geschrieben hast und was an dich ging. Nach einer Änderung werden Mails und Kalender noch einmal von Anfang an gelesen.</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Not yours any more? Whom it hid comes back, and mail is read again.</source>
        <translation>Nicht mehr deine? Wen sie verdeckt hat, kommt zurück, und die Mails werden noch einmal gelesen.</translation>
    </message>
    <message>
        <source>Another mail address of yours</source>
        <translation>Eine weitere Mailadresse von dir</translation>
    </message>
    <message>
        <source>you@example.org</source>
        <translation>du@example.org</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Counting anew who wrote to whom…</source>
        <translation>Wer wem schrieb, wird neu gezählt …</translation>
    </message>
</context>
<context>
    <name>AttentionWhyNowView</name>
    <message>
        <source>expanded</source>
        <translation>ausgeklappt</translation>
    </message>
    <message>
        <source>collapsed</source>
        <translation>eingeklappt</translation>
    </message>
</context>
<context>
    <name>BackupSection</name>
    <message>
        <source>Backup</source>
        <translation>Sicherung</translation>
    </message>
    <message>
        <source>A backup is one encrypted file, read back before it gets its name. It opens with the store&apos;s key only.</source>
        <translation>Eine Sicherung ist eine einzige verschlüsselte Datei, die zur Probe gelesen wird, bevor sie ihren Namen bekommt. Nur der Schlüssel des Datenbestands öffnet sie.</translation>
    </message>
    <message>
        <source>A new file for the backup</source>
        <translation>Eine neue Datei für die Sicherung</translation>
    </message>
    <message>
        <source>Also write a copy of the key</source>
        <translation>Auch eine Kopie des Schlüssels schreiben</translation>
    </message>
    <message>
        <source>Keep it in another place: whoever has both can read everything.</source>
        <translation>Bewahre sie anderswo auf: Wer beides hat, kann alles lesen.</translation>
    </message>
    <message>
        <source>A new file for the key</source>
        <translation>Eine neue Datei für den Schlüssel</translation>
    </message>
    <message>
        <source>Make a backup</source>
        <translation>Sicherung anlegen</translation>
    </message>
    <message>
        <source>Copying the store: %1 %</source>
        <translation>Der Datenbestand wird kopiert: %1 %</translation>
    </message>
    <message>
        <source>Reading the copy back…</source>
        <translation>Die Kopie wird zur Probe gelesen …</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Stop the backup</source>
        <translation>Sicherung anhalten</translation>
    </message>
    <message>
        <source>To bring a backup back, run this in a terminal; what the store held then is kept beside it:</source>
        <translation>Um eine Sicherung zurückzuholen, starte dies in einem Terminal; was der Datenbestand bis dahin enthielt, bleibt daneben erhalten:</translation>
    </message>
    <message>
        <source>FILE</source>
        <comment>stands for the name of a backup</comment>
        <translation>DATEI</translation>
    </message>
</context>
<context>
    <name>CatchUpList</name>
    <message>
        <source>People to get back in touch with</source>
        <translation>Bei wem du dich wieder melden kannst</translation>
    </message>
    <message>
        <source>Close what is older</source>
        <translation>Älteres schließen</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>a heading, and how many there are</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>expanded</source>
        <translation>ausgeklappt</translation>
    </message>
    <message>
        <source>collapsed</source>
        <translation>eingeklappt</translation>
    </message>
</context>
<context>
    <name>CatchUpRow</name>
    <message>
        <source>%1: %2</source>
        <comment>an action, and whom it concerns</comment>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Snooze</source>
        <translation>Zurückstellen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Resolve</source>
        <translation>Erledigen</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>CheckChoice</name>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>ContactPicture</name>
    <message>
        <source>one mail</source>
        <translation>eine Mail</translation>
    </message>
    <message numerus="yes">
        <source>%n mails</source>
        <translation>
            <numerusform>%n Mail</numerusform>
            <numerusform>%n Mails</numerusform>
        </translation>
    </message>
    <message>
        <source>once</source>
        <translation>einmal</translation>
    </message>
    <message numerus="yes">
        <source>%n times</source>
        <translation>
            <numerusform>%n-mal</numerusform>
            <numerusform>%n-mal</numerusform>
        </translation>
    </message>
    <message>
        <source>quiet since %1</source>
        <comment>with the month</comment>
        <translation>still seit %1</translation>
    </message>
    <message numerus="yes">
        <source>quiet for %n weeks</source>
        <translation>
            <numerusform>%n Woche lang still</numerusform>
            <numerusform>%n Wochen lang still</numerusform>
        </translation>
    </message>
    <message>
        <source>Over two years you met %1</source>
        <comment>how often</comment>
        <translation>In zwei Jahren habt ihr euch %1 getroffen</translation>
    </message>
    <message>
        <source>Over two years you wrote %1, they wrote %2</source>
        <translation>In zwei Jahren schriebst du %1, die andere Seite %2</translation>
    </message>
    <message>
        <source>Over two years you wrote %1, they wrote %2, you met %3</source>
        <translation>In zwei Jahren schriebst du %1, die andere Seite %2, ihr habt euch %3 getroffen</translation>
    </message>
    <message>
        <source>You were last in touch in %1.</source>
        <comment>with the month</comment>
        <translation>Zuletzt wart ihr im %1 in Kontakt.</translation>
    </message>
    <message>
        <source>%1.</source>
        <comment>ends a sentence</comment>
        <translation>%1.</translation>
    </message>
    <message>
        <source>%1; %2.</source>
        <comment>how much there was, and “quiet since” a month</comment>
        <translation>%1; %2.</translation>
    </message>
    <message>
        <source>%1; %2 from %3.</source>
        <comment>how much there was, “quiet for” some weeks, and the first month of those</comment>
        <translation>%1; %2, ab %3.</translation>
    </message>
</context>
<context>
    <name>ContactYears</name>
    <message>
        <source>you wrote %1</source>
        <comment>so many mails</comment>
        <translation>von dir %1</translation>
    </message>
    <message>
        <source>they wrote %1</source>
        <comment>so many mails</comment>
        <translation>an dich %1</translation>
    </message>
    <message>
        <source>you met %1 ×</source>
        <comment>so many times</comment>
        <translation>%1 × getroffen</translation>
    </message>
    <message>
        <source>today</source>
        <translation>heute</translation>
    </message>
</context>
<context>
    <name>DayPicker</name>
    <message>
        <source>Month before</source>
        <translation>Voriger Monat</translation>
    </message>
    <message>
        <source>Month after</source>
        <translation>Nächster Monat</translation>
    </message>
</context>
<context>
    <name>Failure</name>
    <message>
        <source>Catch-up unavailable</source>
        <translation>Catch-up unavailable</translation>
    </message>
    <message>
        <source>This store belongs to a newer Orvan</source>
        <translation>Dieser Datenbestand gehört zu einem neueren Orvan</translation>
    </message>
    <message>
        <source>It was last used by a newer version than this one, which must not touch it. Start that version, or install the newest. Nothing was changed.</source>
        <translation>Zuletzt hat ihn eine neuere Version benutzt als diese, die ihn darum nicht anrühren darf. Starte jene Version oder installiere die neueste. Es wurde nichts verändert.</translation>
    </message>
    <message>
        <source>The key to the store is missing</source>
        <translation>Der Schlüssel zum Datenbestand fehlt</translation>
    </message>
    <message>
        <source>The store is there, and only its own key opens it. Put the key back where it was, or name a copy of it when you start Orvan:</source>
        <translation>Der Datenbestand ist da, und nur sein eigener Schlüssel öffnet ihn. Lege den Schlüssel wieder dorthin, wo er war, oder nenne beim Start von Orvan eine Kopie davon:</translation>
    </message>
    <message>
        <source>The store does not open</source>
        <translation>Der Datenbestand lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>Either this is not the key that it was made with, or the store is damaged. Orvan can tell which, and bring it back from a backup:</source>
        <translation>Entweder wurde er mit einem anderen Schlüssel angelegt, oder er ist beschädigt. Orvan kann sagen, was davon zutrifft, und ihn aus einer Sicherung zurückholen:</translation>
    </message>
    <message>
        <source>Others can look into the store</source>
        <translation>Andere können in den Datenbestand sehen</translation>
    </message>
    <message>
        <source>Orvan opens it only when you alone can read it. Take that away from others; this tells which files are meant:</source>
        <translation>Orvan öffnet ihn nur, wenn du allein ihn lesen kannst. Nimm anderen dieses Recht; dies nennt die Dateien, um die es geht:</translation>
    </message>
    <message>
        <source>Another program has kept the store busy for long. Try again in a moment.</source>
        <translation>Ein anderes Programm beansprucht den Datenbestand schon lange. Versuche es gleich noch einmal.</translation>
    </message>
    <message>
        <source>The disk is full</source>
        <translation>Der Datenträger ist voll</translation>
    </message>
    <message>
        <source>Make some room, and try again. Nothing was lost.</source>
        <translation>Schaffe etwas Platz und versuche es noch einmal. Es ging nichts verloren.</translation>
    </message>
    <message>
        <source>The store could not be read. This tells what is wrong, and what to do:</source>
        <translation>Der Datenbestand konnte nicht gelesen werden. Dies sagt, was nicht stimmt und was zu tun ist:</translation>
    </message>
    <message>
        <source>Your keyring is locked</source>
        <translation>Dein Schlüsselbund ist gesperrt</translation>
    </message>
    <message>
        <source>The key to the store lies in the desktop&apos;s keyring. Unlock it with the desktop&apos;s password program, and try again.</source>
        <translation>Der Schlüssel zum Datenbestand liegt im Schlüsselbund der Arbeitsumgebung. Entsperre ihn mit ihrem Passwortprogramm und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>There is no keyring</source>
        <translation>Es gibt keinen Schlüsselbund</translation>
    </message>
    <message>
        <source>The key to the store lies in the desktop&apos;s keyring, and none is running. Start it, or name a copy of the key when you start Orvan:</source>
        <translation>Der Schlüssel zum Datenbestand liegt im Schlüsselbund der Arbeitsumgebung, und es läuft keiner. Starte ihn oder nenne beim Start von Orvan eine Kopie des Schlüssels:</translation>
    </message>
    <message>
        <source>The key to the store cannot be read</source>
        <translation>Der Schlüssel zum Datenbestand ist nicht lesbar</translation>
    </message>
    <message>
        <source>Its file has to be yours, and readable by you alone. This tells what is wrong:</source>
        <translation>Seine Datei muss dir gehören und darf nur für dich lesbar sein. Dies sagt, was nicht stimmt:</translation>
    </message>
    <message>
        <source>There is no store yet</source>
        <translation>Es gibt noch keinen Datenbestand</translation>
    </message>
    <message>
        <source>It was taken away, or never made. Start Orvan again to make one, or put it back.</source>
        <translation>Er wurde entfernt oder nie angelegt. Starte Orvan neu, um einen anzulegen, oder lege ihn zurück.</translation>
    </message>
    <message>
        <source>The store cannot be written to</source>
        <translation>In den Datenbestand lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>Its folder has to be yours, and on a disk that can be written to. Mend that, and try again. Nothing was lost.</source>
        <translation>Sein Ordner muss dir gehören und auf einem beschreibbaren Datenträger liegen. Behebe das und versuche es noch einmal. Es ging nichts verloren.</translation>
    </message>
    <message>
        <source>The folder for the store could not be made</source>
        <translation>Der Ordner für den Datenbestand ließ sich nicht anlegen</translation>
    </message>
    <message>
        <source>The folder around it has to be yours, and on a disk that can be written to.</source>
        <translation>Der Ordner darüber muss dir gehören und auf einem beschreibbaren Datenträger liegen.</translation>
    </message>
</context>
<context>
    <name>FailurePage</name>
    <message>
        <source>Commands for a terminal</source>
        <translation>Befehle für ein Terminal</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
</context>
<context>
    <name>FirstStartPage</name>
    <message>
        <source>First steps</source>
        <translation>Erste Schritte</translation>
    </message>
    <message>
        <source>Welcome to Orvan</source>
        <translation>Willkommen bei Orvan</translation>
    </message>
    <message>
        <source>Orvan tells you whom to get back in touch with now, and why, from the mail, calendars and contacts on this computer. It only reads them, and nothing that it learns leaves this machine.</source>
        <translation>Orvan sagt dir, bei wem du dich jetzt wieder melden kannst, und warum. Dazu liest es die Mails, Kalender und Kontakte auf diesem Rechner, ohne sie zu ändern, und nichts davon verlässt ihn.</translation>
    </message>
    <message>
        <source>Where it is kept</source>
        <translation>Wo es aufbewahrt wird</translation>
    </message>
    <message>
        <source>In your encrypted store, which is there already: %1</source>
        <translation>In deinem verschlüsselten Datenbestand, den es schon gibt: %1</translation>
    </message>
    <message>
        <source>In one encrypted file: %1</source>
        <translation>In einer verschlüsselten Datei: %1</translation>
    </message>
    <message>
        <source>The key that is there already opens it: %1</source>
        <translation>Der Schlüssel, den es schon gibt, öffnet ihn: %1</translation>
    </message>
    <message>
        <source>Its key lies in a file that you alone can read: %1</source>
        <translation>Sein Schlüssel liegt in einer Datei, die nur du lesen kannst: %1</translation>
    </message>
    <message>
        <source>The key in the desktop&apos;s keyring</source>
        <translation>Der Schlüssel im Schlüsselbund der Arbeitsumgebung</translation>
    </message>
    <message>
        <source>It is locked now. Unlock it with the desktop&apos;s password program before you start.</source>
        <translation>Der ist jetzt gesperrt. Entsperre ihn mit dem Passwortprogramm der Arbeitsumgebung, bevor du beginnst.</translation>
    </message>
    <message>
        <source>It opens when you log in.</source>
        <translation>Er öffnet sich, wenn du dich anmeldest.</translation>
    </message>
    <message>
        <source>The key in a file that you alone can read</source>
        <translation>Der Schlüssel in einer Datei, die nur du lesen kannst</translation>
    </message>
    <message>
        <source>Keep a copy of the key later: without it, nobody can read the file.</source>
        <translation>Bewahre später eine Kopie des Schlüssels auf: Ohne ihn kann niemand die Datei lesen.</translation>
    </message>
    <message>
        <source>What Orvan may read</source>
        <translation>Was Orvan lesen darf</translation>
    </message>
    <message>
        <source>Looking where mail programs and calendars keep their files…</source>
        <translation>Orvan sieht nach, wo Mailprogramme und Kalender ihre Dateien haben …</translation>
    </message>
    <message>
        <source>Nothing was found where mail programs and calendars usually keep their files. What lies elsewhere can be added here.</source>
        <translation>Wo Mailprogramme und Kalender ihre Dateien sonst haben, wurde nichts gefunden. Was anderswo liegt, lässt sich hier hinzufügen.</translation>
    </message>
    <message>
        <source>Nothing of it is changed. Leave out what does not concern you.</source>
        <translation>Daran wird nichts geändert. Lass weg, was nicht deins ist.</translation>
    </message>
    <message>
        <source>Path of a mailbox, a calendar, contacts or a folder of these</source>
        <translation>Pfad eines Postfachs, eines Kalenders, von Kontakten oder eines Ordners damit</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Which addresses are yours</source>
        <translation>Welche Adressen dir gehören</translation>
    </message>
    <message>
        <source>Looking for them in the mail…</source>
        <translation>Sie werden in den Mails gesucht …</translation>
    </message>
    <message>
        <source>None could be told from the mail. Write here from which address you write, so that Orvan knows your mail from that of others.</source>
        <translation>Aus den Mails ging keine hervor. Gib hier an, von welcher Adresse du schreibst, damit Orvan deine Mails von denen anderer unterscheiden kann.</translation>
    </message>
    <message>
        <source>They tell what you wrote from what others wrote. Add what is missing.</source>
        <translation>An ihnen erkennt Orvan, was du und was andere geschrieben haben. Füge hinzu, was fehlt.</translation>
    </message>
    <message>
        <source>Another mail address of yours</source>
        <translation>Eine weitere Mailadresse von dir</translation>
    </message>
    <message>
        <source>People appear as soon as the first of your mail is read.</source>
        <translation>Die ersten Personen erscheinen, sobald die ersten Mails gelesen sind.</translation>
    </message>
    <message>
        <source>Nobody was found in what was read so far.</source>
        <translation>In dem, was bisher gelesen wurde, fand sich niemand.</translation>
    </message>
    <message>
        <source>Choose more</source>
        <translation>Mehr auswählen</translation>
    </message>
    <message>
        <source>Making the store…</source>
        <translation>Der Datenbestand wird angelegt …</translation>
    </message>
    <message>
        <source>Start reading</source>
        <translation>Mit dem Lesen beginnen</translation>
    </message>
    <message>
        <source>Go on</source>
        <translation>Fortfahren</translation>
    </message>
</context>
<context>
    <name>FollowUps</name>
    <message>
        <source>Due %1</source>
        <translation>Fällig: %1</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Erledigt</translation>
    </message>
    <message>
        <source>Done: %1</source>
        <translation>Erledigt: %1</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Absagen</translation>
    </message>
    <message>
        <source>Cancel: %1</source>
        <translation>Absagen: %1</translation>
    </message>
</context>
<context>
    <name>HiddenSection</name>
    <message>
        <source>Hidden</source>
        <translation>Ausgeblendet</translation>
    </message>
    <message>
        <source>People and conversations that you hide are kept here, and can be shown again.</source>
        <translation>Personen und Gespräche, die du ausblendest, bleiben hier und lassen sich wieder zeigen.</translation>
    </message>
    <message>
        <source>Show again</source>
        <translation>Wieder zeigen</translation>
    </message>
    <message>
        <source>Show again: %1</source>
        <translation>Wieder zeigen: %1</translation>
    </message>
</context>
<context>
    <name>HidingWords</name>
    <message>
        <source>A conversation</source>
        <translation>Ein Gespräch</translation>
    </message>
    <message>
        <source>A conversation with %1</source>
        <translation>Ein Gespräch mit %1</translation>
    </message>
    <message>
        <source>The conversation “%1”</source>
        <translation>Das Gespräch „%1“</translation>
    </message>
    <message>
        <source>The conversation “%1” with %2</source>
        <translation>Das Gespräch „%1“ mit %2</translation>
    </message>
    <message>
        <source>A mail that waits for nothing</source>
        <translation>Eine Mail, die auf nichts wartet</translation>
    </message>
    <message>
        <source>A mail from %1, which waits for nothing</source>
        <translation>Eine Mail von %1, die auf nichts wartet</translation>
    </message>
    <message>
        <source>The mail “%1”, which waits for nothing</source>
        <translation>Die Mail „%1“, die auf nichts wartet</translation>
    </message>
    <message>
        <source>The mail “%1” from %2, which waits for nothing</source>
        <translation>Die Mail „%1“ von %2, die auf nichts wartet</translation>
    </message>
    <message>
        <source>What came from %1 (%2)</source>
        <translation>Was von %1 kam (%2)</translation>
    </message>
</context>
<context>
    <name>KeysPage</name>
    <message>
        <source>Next person</source>
        <translation>Nächste Person</translation>
    </message>
    <message>
        <source>Person before</source>
        <translation>Vorige Person</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Go to the person</source>
        <translation>Zur Person gehen</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Back to the list</source>
        <translation>Zurück zur Liste</translation>
    </message>
    <message>
        <source>Snooze</source>
        <translation>Zurückstellen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Resolve</source>
        <translation>Erledigen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Search people</source>
        <translation>Personen suchen</translation>
    </message>
    <message>
        <source>Larger, smaller, usual text</source>
        <translation>Größere, kleinere, übliche Schrift</translation>
    </message>
    <message>
        <source>These keys</source>
        <translation>Diese Tasten</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Be reminded of the person</source>
        <translation>An die Person erinnert werden</translation>
    </message>
    <message>
        <source>Read what is new</source>
        <translation>Neues lesen</translation>
    </message>
    <message>
        <source>Overview of everybody</source>
        <translation>Überblick über alle</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Open message</source>
        <translation>Mail öffnen</translation>
    </message>
    <message>
        <source>Menu  Shift F10</source>
        <translation>Menü  Umschalt F10</translation>
    </message>
    <message>
        <source>More about the person</source>
        <translation>Mehr zur Person</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Orvan</source>
        <translation>Orvan</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Search people</source>
        <translation>Personen suchen</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Nobody is waiting for you.</source>
        <translation>Niemand wartet auf dich.</translation>
    </message>
    <message>
        <source>Orvan knows nobody yet.</source>
        <translation>Orvan kennt noch niemanden.</translation>
    </message>
    <message>
        <source>Every question is answered, and nothing is left open. When that changes, you see it here.</source>
        <translation>Jede Frage ist beantwortet, und nichts ist offen. Sobald sich das ändert, siehst du es hier.</translation>
    </message>
    <message>
        <source>Reads what is new</source>
        <translation>Liest, was neu ist</translation>
    </message>
    <message>
        <source>Nobody is waiting for you so far.</source>
        <translation>Bisher wartet niemand auf dich.</translation>
    </message>
    <message>
        <source>Not everything is read yet. People appear here as they are found.</source>
        <translation>Noch ist nicht alles gelesen. Wer gefunden wird, erscheint hier nach und nach.</translation>
    </message>
    <message>
        <source>Let it look for your mail, calendars and contacts. People appear here as soon as they are found.</source>
        <translation>Lass es nach deinen Mails, Kalendern und Kontakten suchen. Wer gefunden wird, erscheint hier sogleich.</translation>
    </message>
    <message>
        <source>Only what is older is still open. When that changes, you see it here.</source>
        <translation>Offen ist nur noch Älteres. Sobald sich das ändert, siehst du es hier.</translation>
    </message>
    <message>
        <source>Choose what to read</source>
        <translation>Auswählen, was gelesen wird</translation>
    </message>
</context>
<context>
    <name>MainMenu</name>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Read what is new</source>
        <translation>Neues lesen</translation>
    </message>
    <message>
        <source>Overview</source>
        <translation>Überblick</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Ctrl+,</source>
        <translation>Strg+,</translation>
    </message>
</context>
<context>
    <name>MergeMenu</name>
    <message>
        <source>Make %1 and %2 one person?</source>
        <translation>Sind %1 und %2 dieselbe Person?</translation>
    </message>
    <message>
        <source>Who is the same as %1?</source>
        <translation>Wer ist dieselbe Person wie %1?</translation>
    </message>
    <message>
        <source>Search people</source>
        <translation>Personen suchen</translation>
    </message>
    <message>
        <source>People found</source>
        <translation>Gefundene Personen</translation>
    </message>
    <message>
        <source>Nobody you deal with has that in their name or address.</source>
        <translation>Bei niemandem, mit dem du zu tun hast, steht das im Namen oder in der Adresse.</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>Make them one</source>
        <translation>Zusammenführen</translation>
    </message>
    <message>
        <source>Somebody else</source>
        <translation>Jemand anders</translation>
    </message>
    <message>
        <source>Both become %1 (%2), with all the mail, meetings and decisions of both.</source>
        <translation>Aus beiden wird %1 (%2), mit allen Mails, Treffen und Entscheidungen von beiden.</translation>
    </message>
</context>
<context>
    <name>NoticeBar</name>
    <message>
        <source>Undo (%1)</source>
        <translation>Rückgängig (%1)</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>OverviewPage</name>
    <message>
        <source>Overview</source>
        <translation>Überblick</translation>
    </message>
    <message>
        <source>There is no contact of the last two years yet. With some months of your mail and calendars, you see here who drifted away, who is in touch and who waits.</source>
        <translation>Aus den letzten zwei Jahren gibt es noch keinen Kontakt. Mit einigen Monaten deiner Mails und Kalender siehst du hier, wer sich entfernt hat, mit wem du in Kontakt bist und wer wartet.</translation>
    </message>
    <message>
        <source>People by how long ago there was contact, and by who waits for whom</source>
        <translation>Personen danach, wie lange der letzte Kontakt her ist und wer auf wen wartet</translation>
    </message>
    <message>
        <source>drifted away</source>
        <translation>hat sich entfernt</translation>
    </message>
    <message>
        <source>in touch</source>
        <translation>in Kontakt</translation>
    </message>
    <message>
        <source>too little contact to tell</source>
        <translation>zu wenig Kontakt für ein Urteil</translation>
    </message>
    <message>
        <source>The larger a dot, the more you exchange. %1 people are shown, and %2 more are not.</source>
        <translation>Je größer ein Punkt, desto reger der Austausch. %1 Personen sind zu sehen, %2 weitere nicht.</translation>
    </message>
    <message>
        <source>The larger a dot, the more you exchange.</source>
        <translation>Je größer ein Punkt, desto reger der Austausch.</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>a heading, and how many there are</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <comment>people</comment>
        <translation>und %1 weitere</translation>
    </message>
</context>
<context>
    <name>PersonMenu</name>
    <message>
        <source>More about %1</source>
        <translation>Mehr zu %1</translation>
    </message>
    <message>
        <source>Open message</source>
        <translation>Mail öffnen</translation>
    </message>
    <message>
        <source>there is none</source>
        <translation>es gibt keine</translation>
    </message>
    <message>
        <source>This is wrong…</source>
        <translation>Das stimmt nicht …</translation>
    </message>
    <message>
        <source>Rename…</source>
        <translation>Umbenennen …</translation>
    </message>
    <message>
        <source>Merge with…</source>
        <translation>Zusammenführen mit …</translation>
    </message>
    <message>
        <source>Hide this conversation</source>
        <translation>Dieses Gespräch ausblenden</translation>
    </message>
    <message>
        <source>Show again</source>
        <translation>Wieder zeigen</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Ausblenden</translation>
    </message>
</context>
<context>
    <name>PersonPage</name>
    <message>
        <source>Snooze</source>
        <translation>Zurückstellen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Resolve</source>
        <translation>Erledigen</translation>
    </message>
    <message>
        <source>They asked</source>
        <translation>Die Frage an dich</translation>
    </message>
    <message>
        <source>The meeting</source>
        <translation>Das Treffen</translation>
    </message>
    <message>
        <source>Until now</source>
        <translation>Bis jetzt</translation>
    </message>
    <message>
        <source>The conversation</source>
        <translation>Das Gespräch</translation>
    </message>
    <message numerus="yes">
        <source>%n earlier</source>
        <translation>
            <numerusform>%n davor</numerusform>
            <numerusform>%n davor</numerusform>
        </translation>
    </message>
    <message>
        <source>There is also</source>
        <translation>Außerdem</translation>
    </message>
    <message>
        <source>What you decided</source>
        <translation>Was du entschieden hast</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation>Erinnere mich</translation>
    </message>
    <message>
        <source>You wanted to get back to them</source>
        <translation>Du wolltest dich melden</translation>
    </message>
    <message>
        <source>More about %1</source>
        <translation>Mehr zu %1</translation>
    </message>
    <message>
        <source>Show again</source>
        <translation>Wieder zeigen</translation>
    </message>
    <message>
        <source>Bring back now</source>
        <translation>Jetzt zurückholen</translation>
    </message>
    <message>
        <source>Open message</source>
        <translation>Mail öffnen</translation>
    </message>
    <message>
        <source>What you hide of it</source>
        <translation>Was du davon ausblendest</translation>
    </message>
</context>
<context>
    <name>ProgressStrip</name>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Stop reading</source>
        <translation>Lesen anhalten</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message>
        <source>Go on</source>
        <translation>Fortfahren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>Refusal</name>
    <message>
        <source>There is something with that name already. Name another file; nothing was written over.</source>
        <translation>Unter diesem Namen gibt es schon etwas. Nenne eine andere Datei; es wurde nichts überschrieben.</translation>
    </message>
    <message>
        <source>That name is one of the store&apos;s own. Name another file.</source>
        <translation>Dieser Name gehört zum Datenbestand selbst. Nenne eine andere Datei.</translation>
    </message>
    <message>
        <source>There is no such folder. Make it, or name a file in another.</source>
        <translation>Diesen Ordner gibt es nicht. Lege ihn an oder nenne eine Datei in einem anderen.</translation>
    </message>
    <message>
        <source>Nothing can be written into that folder. Name a file in another.</source>
        <translation>In diesen Ordner lässt sich nicht schreiben. Nenne eine Datei in einem anderen.</translation>
    </message>
    <message>
        <source>There is no room for the backup on that disk. Make room, or name a file on another; nothing was left there.</source>
        <translation>Auf diesem Datenträger ist kein Platz für die Sicherung. Schaffe Platz oder nenne eine Datei auf einem anderen; es blieb nichts zurück.</translation>
    </message>
    <message>
        <source>Parts of the store cannot be read, so there is no new backup. “orvan doctor” in a terminal tells more.</source>
        <translation>Teile des Datenbestands sind nicht lesbar, darum gibt es keine neue Sicherung. „orvan doctor“ in einem Terminal sagt mehr.</translation>
    </message>
    <message>
        <source>The copy could not be read back as it was written, so it was removed. Check that disk, or name a file on another.</source>
        <translation>Die Kopie ließ sich nicht so lesen, wie sie geschrieben wurde, und wurde entfernt. Prüfe den Datenträger oder nenne eine Datei auf einem anderen.</translation>
    </message>
    <message>
        <source>There is no new backup. “orvan doctor” in a terminal tells more.</source>
        <translation>Es gibt keine neue Sicherung. „orvan doctor“ in einem Terminal sagt mehr.</translation>
    </message>
    <message>
        <source>Another Orvan program has the store open. Close it and try again; nothing was changed.</source>
        <translation>Ein anderes Orvan-Programm hat den Datenbestand offen. Schließe es und versuche es noch einmal; es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>The store could not be written anew, so it keeps its key. Make room on the disk and try again.</source>
        <translation>Der Datenbestand ließ sich nicht neu schreiben und behält darum seinen Schlüssel. Schaffe Platz auf dem Datenträger und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>Another program kept the store busy for too long. Try again; nothing was changed.</source>
        <translation>Ein anderes Programm hat den Datenbestand zu lange beansprucht. Versuche es noch einmal; es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>The store cannot be written. Check that the file and its folder are yours.</source>
        <translation>Der Datenbestand lässt sich nicht schreiben. Prüfe, ob die Datei und ihr Ordner dir gehören.</translation>
    </message>
    <message>
        <source>The disk is full. Make some room and try again; nothing was lost.</source>
        <translation>Der Datenträger ist voll. Schaffe etwas Platz und versuche es noch einmal; es ging nichts verloren.</translation>
    </message>
    <message>
        <source>That could not be done. “orvan doctor” in a terminal tells what is wrong.</source>
        <translation>Das war nicht möglich. „orvan doctor“ in einem Terminal sagt, was nicht stimmt.</translation>
    </message>
    <message>
        <source>Your keyring is locked. Unlock it with the desktop&apos;s password program, and try again.</source>
        <translation>Dein Schlüsselbund ist gesperrt. Entsperre ihn mit dem Passwortprogramm der Arbeitsumgebung und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>There is no keyring here. Start your desktop&apos;s (such as GNOME Keyring, KWallet or KeePassXC), and try again.</source>
        <translation>Hier gibt es keinen Schlüsselbund. Starte den deiner Arbeitsumgebung (etwa GNOME Keyring, KWallet oder KeePassXC) und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>The key could not be read or written. Check that its folder exists and that the file is yours.</source>
        <translation>Der Schlüssel ließ sich nicht lesen oder schreiben. Prüfe, ob es seinen Ordner gibt und die Datei dir gehört.</translation>
    </message>
    <message>
        <source>There is no such file or folder; check the path.</source>
        <translation>Diese Datei oder diesen Ordner gibt es nicht; prüfe den Pfad.</translation>
    </message>
    <message>
        <source>It is not there any more. Bring it back or connect its disk, or remove it here.</source>
        <translation>Sie ist nicht mehr da. Hole sie zurück, schließe ihren Datenträger an oder entferne sie hier.</translation>
    </message>
    <message>
        <source>You may not read it. Change its permissions.</source>
        <translation>Du darfst sie nicht lesen. Ändere die Zugriffsrechte.</translation>
    </message>
    <message>
        <source>It is a pipe, a socket or a device. Name a file or a folder.</source>
        <translation>Das ist eine Pipe, ein Socket oder ein Gerät. Nenne eine Datei oder einen Ordner.</translation>
    </message>
    <message>
        <source>It holds no mail, calendar or contact cards in a form that Orvan reads. Name the file or folder that does.</source>
        <translation>Darin sind keine Mails, Kalender oder Kontaktkarten in einer Form, die Orvan liest. Nenne die Datei oder den Ordner damit.</translation>
    </message>
    <message>
        <source>Nothing of what it held is there any more. Bring it back or connect its disk, or remove it here.</source>
        <translation>Von dem, was sie enthielt, ist nichts mehr da. Hole es zurück, schließe den Datenträger an oder entferne sie hier.</translation>
    </message>
    <message>
        <source>It is not what it was when it was added. Remove it here, and add what is there now.</source>
        <translation>Sie ist nicht mehr, was sie beim Hinzufügen war. Entferne sie hier und füge hinzu, was jetzt da ist.</translation>
    </message>
    <message>
        <source>There is too much in this folder to look through. Name the folder within it that holds the mail.</source>
        <translation>In diesem Ordner ist zu viel, um alles durchzusehen. Nenne den Ordner darin, in dem die Mails liegen.</translation>
    </message>
    <message>
        <source>It cannot be read, or changed while it was. Try again, and check the disk if that does not help.</source>
        <translation>Sie ist nicht lesbar oder änderte sich während des Lesens. Versuche es noch einmal und prüfe sonst den Datenträger.</translation>
    </message>
    <message>
        <source>There is no desktop session to remind you in.</source>
        <translation>Es gibt keine Arbeitssitzung, in der dich etwas erinnern könnte.</translation>
    </message>
    <message>
        <source>The reminder service (orvan-agent) does not run. Start it here, or install it if it is missing.</source>
        <translation>Der Erinnerungsdienst (orvan-agent) läuft nicht. Starte ihn hier, oder installiere ihn, wenn er fehlt.</translation>
    </message>
    <message>
        <source>The reminder service did not answer. Try again in a while.</source>
        <translation>Der Erinnerungsdienst hat nicht geantwortet. Versuche es in einer Weile noch einmal.</translation>
    </message>
    <message>
        <source>The reminder service did not take that. It may be of another version than this window.</source>
        <translation>Der Erinnerungsdienst hat das nicht angenommen. Vielleicht ist er von einer anderen Version als dieses Fenster.</translation>
    </message>
    <message>
        <source>The reminder service cannot read its key. Unlock the desktop&apos;s keyring, and try again.</source>
        <translation>Der Erinnerungsdienst kann seinen Schlüssel nicht lesen. Entsperre den Schlüsselbund der Arbeitsumgebung und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>The reminder service cannot use its file. Its journal tells more: “journalctl --user -u orvan-agent” in a terminal.</source>
        <translation>Der Erinnerungsdienst kann seine Datei nicht benutzen. Mehr sagt sein Protokoll: „journalctl --user -u orvan-agent“ in einem Terminal.</translation>
    </message>
    <message>
        <source>There is nothing here that shows notifications. Start a notification service, such as dunst or your desktop&apos;s own.</source>
        <translation>Hier zeigt nichts Benachrichtigungen an. Starte einen Benachrichtigungsdienst, etwa dunst oder den deiner Arbeitsumgebung.</translation>
    </message>
    <message>
        <source>The reminder service is another user&apos;s.</source>
        <translation>Der Erinnerungsdienst gehört einem anderen Benutzer.</translation>
    </message>
    <message>
        <source>The reminder service is of another version. Start it anew: “systemctl --user restart orvan-agent” in a terminal.</source>
        <translation>Der Erinnerungsdienst ist von einer anderen Version. Starte ihn neu: „systemctl --user restart orvan-agent“ in einem Terminal.</translation>
    </message>
    <message>
        <source>They are one person already.</source>
        <translation>Sie sind schon eine Person.</translation>
    </message>
    <message>
        <source>You hide one of them and not the other. Show or hide both first, so that it is clear what is to hold for them.</source>
        <translation>Du blendest nur eine der beiden aus. Zeige oder verstecke zuerst beide, damit klar ist, was für sie gelten soll.</translation>
    </message>
    <message>
        <source>Nobody has that address any more.</source>
        <translation>Diese Adresse hat niemand mehr.</translation>
    </message>
    <message>
        <source>That is their only address.</source>
        <translation>Das ist die einzige Adresse der Person.</translation>
    </message>
    <message>
        <source>A name needs a letter.</source>
        <translation>Ein Name braucht einen Buchstaben.</translation>
    </message>
    <message>
        <source>This was changed since, so it stays as it is now.</source>
        <translation>Das wurde seither geändert und bleibt darum, wie es ist.</translation>
    </message>
    <message>
        <source>This was taken back already.</source>
        <translation>Das wurde schon zurückgenommen.</translation>
    </message>
    <message>
        <source>This was done too long ago to be taken back.</source>
        <translation>Das ist zu lange her, um es zurückzunehmen.</translation>
    </message>
    <message>
        <source>What was dismissed or resolved stays so. A new reason brings the person back by itself.</source>
        <translation>Was verworfen oder erledigt ist, bleibt es. Ein neuer Grund bringt die Person von selbst zurück.</translation>
    </message>
    <message>
        <source>What the store tells of this cannot be read, so it cannot be taken back.</source>
        <translation>Was der Datenbestand dazu enthält, ist nicht lesbar und lässt sich darum nicht zurücknehmen.</translation>
    </message>
    <message>
        <source>This person is gone meanwhile.</source>
        <translation>Diese Person gibt es inzwischen nicht mehr.</translation>
    </message>
    <message>
        <source>Only a question and a conversation that waits can be wrong. Dismiss takes any other reason off the list.</source>
        <translation>Nur eine Frage und ein wartendes Gespräch können falsch sein. Jeden anderen Grund nimmt Verwerfen von der Liste.</translation>
    </message>
    <message>
        <source>This is part of no conversation.</source>
        <translation>Das gehört zu keinem Gespräch.</translation>
    </message>
    <message>
        <source>This is shown already.</source>
        <translation>Das ist schon zu sehen.</translation>
    </message>
    <message>
        <source>The reason has changed meanwhile, so nothing was done.</source>
        <translation>Der Grund hat sich inzwischen geändert, darum geschah nichts.</translation>
    </message>
    <message>
        <source>Nothing was changed. %1</source>
        <translation>Es wurde nichts geändert. %1</translation>
    </message>
    <message>
        <source>There is no way to reach your mail program: the desktop&apos;s xdg-open is not installed.</source>
        <translation>Dein Mailprogramm ist nicht zu erreichen: xdg-open ist nicht installiert.</translation>
    </message>
    <message>
        <source>No mail program of yours opens single messages. Make one the program for “mid:” addresses in the desktop&apos;s settings.</source>
        <translation>Keines deiner Mailprogramme öffnet einzelne Mails. Lege in den Einstellungen der Arbeitsumgebung eines für „mid:“-Adressen fest.</translation>
    </message>
    <message>
        <source>Your mail program did not open the message.</source>
        <translation>Dein Mailprogramm hat die Mail nicht geöffnet.</translation>
    </message>
    <message>
        <source>It holds something else than its name says. Give it a name that fits, and add it again.</source>
        <translation>Darin ist etwas anderes, als der Name sagt. Gib ihm einen passenden Namen und füge es noch einmal hinzu.</translation>
    </message>
    <message>
        <source>It is a database. Export mail as mbox and calendars as .ics from the program that keeps it, and add those.</source>
        <translation>Es ist eine Datenbank. Exportiere aus ihrem Programm die Mails als mbox und die Kalender als .ics und füge diese hinzu.</translation>
    </message>
    <message>
        <source>It is neither mail nor a calendar nor contact cards. If it is packed, unpack it and add what is inside.</source>
        <translation>Es sind weder Mails noch ein Kalender noch Kontaktkarten. Wenn es gepackt ist, entpacke es und füge hinzu, was darin ist.</translation>
    </message>
    <message>
        <source>There is no mail in it. Name a file in mbox form, in which each mail begins with a line “From …”.</source>
        <translation>Darin ist keine Mail. Nenne eine Datei in mbox-Form, in der jede Mail mit einer Zeile „From …“ beginnt.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <comment>a file and what is wrong with it</comment>
        <translation>%1: %2</translation>
    </message>
    <message numerus="yes">
        <source>%1 And %n more.</source>
        <comment>files with which something is wrong</comment>
        <translation>
            <numerusform>%1 Und %n weitere Stelle.</numerusform>
            <numerusform>%1 Und %n weitere Stellen.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>RemindMenu</name>
    <message>
        <source>What about? (optional)</source>
        <translation>Worum geht es? (freiwillig)</translation>
    </message>
    <message>
        <source>Another time…</source>
        <translation>Anderer Zeitpunkt …</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Uhrzeit</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation>Erinnere mich</translation>
    </message>
    <message>
        <source>Write a time to come, such as 14:30.</source>
        <translation>Gib eine Uhrzeit an, die noch kommt, etwa 14:30.</translation>
    </message>
</context>
<context>
    <name>Reminder</name>
    <message>
        <source>Tonight</source>
        <translation>Heute Abend</translation>
    </message>
    <message>
        <source>Tomorrow</source>
        <translation>Morgen</translation>
    </message>
    <message>
        <source>Next week</source>
        <translation>Nächste Woche</translation>
    </message>
</context>
<context>
    <name>RemindersSection</name>
    <message>
        <source>Reminders</source>
        <translation>Erinnerungen</translation>
    </message>
    <message>
        <source>Asking the reminder service…</source>
        <translation>Der Erinnerungsdienst wird gefragt …</translation>
    </message>
    <message>
        <source>Remind me</source>
        <translation>Mich erinnern</translation>
    </message>
    <message>
        <source>Reminders that were set stay set while this is off.</source>
        <translation>Gestellte Erinnerungen bleiben gestellt, solange dies aus ist.</translation>
    </message>
    <message>
        <source>Say on the screen what I noted down</source>
        <translation>Auf dem Bildschirm zeigen, was ich notiert habe</translation>
    </message>
    <message>
        <source>Otherwise a reminder says only that there is one.</source>
        <translation>Sonst sagt eine Erinnerung nur, dass es sie gibt.</translation>
    </message>
    <message>
        <source>Look for new mail and calendar entries in the background</source>
        <translation>Im Hintergrund nach neuen Mails und Terminen sehen</translation>
    </message>
    <message>
        <source>Show a test reminder</source>
        <translation>Probe-Erinnerung zeigen</translation>
    </message>
    <message>
        <source>Start the service</source>
        <translation>Dienst starten</translation>
    </message>
    <message>
        <source>Look again</source>
        <translation>Noch einmal nachsehen</translation>
    </message>
</context>
<context>
    <name>RenameMenu</name>
    <message>
        <source>What do you call them?</source>
        <translation>Wie nennst du diese Person?</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>As mail says</source>
        <translation>Wie in den Mails</translation>
    </message>
    <message>
        <source>No mail changes this name. Leave it empty for the one that mail gives.</source>
        <translation>Keine Mail ändert diesen Namen. Bleibt das Feld leer, gilt der aus den Mails.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>SafetySection</name>
    <message>
        <source>Security</source>
        <translation>Sicherheit</translation>
    </message>
    <message>
        <source>Nothing that Orvan knows leaves this computer.</source>
        <translation>Nichts, was Orvan weiß, verlässt diesen Rechner.</translation>
    </message>
    <message>
        <source>The store</source>
        <translation>Der Datenbestand</translation>
    </message>
    <message>
        <source>%1 · %2</source>
        <comment>path and size</comment>
        <translation>%1 · %2</translation>
    </message>
    <message>
        <source>Its key</source>
        <translation>Sein Schlüssel</translation>
    </message>
    <message>
        <source>Move to a file</source>
        <translation>In eine Datei legen</translation>
    </message>
    <message>
        <source>Move to the keyring</source>
        <translation>In den Schlüsselbund legen</translation>
    </message>
    <message>
        <source>Move the key to a file</source>
        <translation>Den Schlüssel in eine Datei legen</translation>
    </message>
    <message>
        <source>Move the key to the keyring</source>
        <translation>Den Schlüssel in den Schlüsselbund legen</translation>
    </message>
    <message>
        <source>A new key</source>
        <translation>Ein neuer Schlüssel</translation>
    </message>
    <message>
        <source>When somebody may have had a copy of the key.</source>
        <translation>Falls jemand eine Kopie des Schlüssels gehabt haben könnte.</translation>
    </message>
    <message>
        <source>Change the key…</source>
        <translation>Schlüssel wechseln …</translation>
    </message>
    <message>
        <source>Backups and copies made so far open with the present key only, and that will be gone. To keep it for them, name a new file for it.</source>
        <translation>Bisherige Sicherungen und Kopien öffnet nur der jetzige Schlüssel, und den gibt es dann nicht mehr. Um ihn dafür zu behalten, nenne eine neue Datei für ihn.</translation>
    </message>
    <message>
        <source>File for the present key</source>
        <translation>Datei für den jetzigen Schlüssel</translation>
    </message>
    <message>
        <source>Keep the present key in… (may stay empty)</source>
        <translation>Jetzigen Schlüssel behalten in … (freiwillig)</translation>
    </message>
    <message>
        <source>Change the key</source>
        <translation>Schlüssel wechseln</translation>
    </message>
    <message>
        <source>Change the key, and let the present one go</source>
        <translation>Schlüssel wechseln und den jetzigen aufgeben</translation>
    </message>
    <message>
        <source>Leave it</source>
        <translation>Lassen, wie es ist</translation>
    </message>
    <message>
        <source>One moment…</source>
        <translation>Einen Moment …</translation>
    </message>
</context>
<context>
    <name>SearchResults</name>
    <message>
        <source>People found</source>
        <translation>Gefundene Personen</translation>
    </message>
    <message>
        <source>Nobody you deal with has that in their name or address.</source>
        <translation>Bei niemandem, mit dem du zu tun hast, steht das im Namen oder in der Adresse.</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>SettingsRow</name>
    <message>
        <source>Keep it</source>
        <translation>Behalten</translation>
    </message>
</context>
<context>
    <name>Snooze</name>
    <message>
        <source>Tomorrow</source>
        <translation>Morgen</translation>
    </message>
    <message>
        <source>Next week</source>
        <translation>Nächste Woche</translation>
    </message>
    <message>
        <source>Next month</source>
        <translation>Nächsten Monat</translation>
    </message>
</context>
<context>
    <name>SnoozeMenu</name>
    <message>
        <source>Snooze until</source>
        <translation>Zurückstellen bis</translation>
    </message>
    <message>
        <source>Another day…</source>
        <translation>Anderer Tag …</translation>
    </message>
</context>
<context>
    <name>SourceWords</name>
    <message>
        <source>Not read yet</source>
        <translation>Noch nicht gelesen</translation>
    </message>
    <message>
        <source>Read just now</source>
        <translation>Gerade gelesen</translation>
    </message>
    <message>
        <source>Read %1 min ago</source>
        <translation>Gelesen vor %1 Min.</translation>
    </message>
    <message>
        <source>Read %1 h ago</source>
        <translation>Gelesen vor %1 Std.</translation>
    </message>
    <message>
        <source>Read on %1</source>
        <translation>Gelesen am %1</translation>
    </message>
</context>
<context>
    <name>SourcesSection</name>
    <message>
        <source>Sources</source>
        <translation>Quellen</translation>
    </message>
    <message>
        <source>Orvan reads these where they lie and keeps up to date with them. It changes nothing there.</source>
        <translation>Orvan liest diese dort, wo sie liegen, und bleibt auf ihrem Stand. Es ändert dort nichts.</translation>
    </message>
    <message>
        <source>Nothing is kept up to date yet. Name where your mail, calendars or contacts lie; Orvan reads them there, and changes nothing.</source>
        <translation>Noch wird nichts aktuell gehalten. Gib an, wo deine Mails, Kalender oder Kontakte liegen; Orvan liest sie dort und ändert nichts.</translation>
    </message>
    <message>
        <source>%1 · %2 · cannot be read</source>
        <comment>kind, and when it was read</comment>
        <translation>%1 · %2 · nicht lesbar</translation>
    </message>
    <message>
        <source>%1 · %2 · something new is waiting</source>
        <comment>kind, and when it was read</comment>
        <translation>%1 · %2 · es gibt Neues</translation>
    </message>
    <message>
        <source>%1 · %2</source>
        <comment>kind, and when it was read</comment>
        <translation>%1 · %2</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Read it no longer? What was read from it stays.</source>
        <translation>Nicht mehr lesen? Was daraus gelesen wurde, bleibt.</translation>
    </message>
    <message>
        <source>Path of a mailbox, calendar or address book</source>
        <translation>Pfad eines Postfachs, Kalenders oder Adressbuchs</translation>
    </message>
    <message>
        <source>~/Mail, a calendar.ics, a folder…</source>
        <translation>~/Mail, eine kalender.ics, ein Ordner …</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>StateLine</name>
    <message>
        <source>%1 · encrypted, on this computer</source>
        <translation>%1 · verschlüsselt, auf diesem Rechner</translation>
    </message>
    <message>
        <source>Opens the settings</source>
        <translation>Öffnet die Einstellungen</translation>
    </message>
</context>
<context>
    <name>TerminalCommand</name>
    <message>
        <source>Command for a terminal</source>
        <translation>Befehl für ein Terminal</translation>
    </message>
</context>
<context>
    <name>Wording</name>
    <message>
        <source>“%1”</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>%1, all day</source>
        <translation>%1, ganztägig</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>what a meeting is about, and where it is</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Waiting for your reply since %1</source>
        <translation>Wartet seit %1 auf deine Antwort</translation>
    </message>
    <message>
        <source>Meeting on %1</source>
        <translation>Treffen am %1</translation>
    </message>
    <message>
        <source>Back in touch since %1, after quiet since %2</source>
        <translation>Seit %1 wieder in Kontakt, davor Stille seit %2</translation>
    </message>
    <message>
        <source>Still open since %1</source>
        <translation>Noch offen seit %1</translation>
    </message>
    <message>
        <source>You wanted to get back to</source>
        <translation>Du wolltest dich melden</translation>
    </message>
    <message>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <source>Lately</source>
        <translation>In letzter Zeit</translation>
    </message>
    <message>
        <source>New to you</source>
        <translation>Neu für dich</translation>
    </message>
    <message>
        <source>Older</source>
        <translation>Älter</translation>
    </message>
    <message>
        <source>Due %1</source>
        <translation>Fällig: %1</translation>
    </message>
    <message>
        <source>Nothing is waiting between you.</source>
        <translation>Zwischen euch ist nichts offen.</translation>
    </message>
    <message>
        <source>What the store holds gives no reason that could be shown.</source>
        <translation>Aus dem Datenbestand ergibt sich kein Grund, der sich zeigen ließe.</translation>
    </message>
    <message>
        <source>There is a reason, but no name to show.</source>
        <translation>Es gibt einen Grund, aber keinen Namen dazu.</translation>
    </message>
    <message>
        <source>Snoozed until %1.</source>
        <translation>Zurückgestellt bis %1.</translation>
    </message>
    <message>
        <source>Snoozed.</source>
        <translation>Zurückgestellt.</translation>
    </message>
    <message>
        <source>Not looked at: the list looks at the people you deal with most.</source>
        <translation>Nicht betrachtet: Die Liste betrachtet die Personen, mit denen du am meisten zu tun hast.</translation>
    </message>
    <message>
        <source>You hide this person.</source>
        <translation>Du blendest diese Person aus.</translation>
    </message>
    <message>
        <source>Snoozed until %1</source>
        <translation>Zurückgestellt bis %1</translation>
    </message>
    <message>
        <source>Dismissed</source>
        <translation>Verworfen</translation>
    </message>
    <message>
        <source>Resolved</source>
        <translation>Erledigt</translation>
    </message>
    <message>
        <source>On the list</source>
        <translation>Auf der Liste</translation>
    </message>
    <message>
        <source>Dismissed: %1</source>
        <translation>Verworfen: %1</translation>
    </message>
    <message>
        <source>Resolved: %1</source>
        <translation>Erledigt: %1</translation>
    </message>
    <message>
        <source>Snoozed until %2: %1</source>
        <translation>Zurückgestellt bis %2: %1</translation>
    </message>
    <message>
        <source>Up to date</source>
        <translation>Auf dem neuesten Stand</translation>
    </message>
    <message>
        <source>Up to date %1 min ago</source>
        <translation>Stand vor %1 Min.</translation>
    </message>
    <message>
        <source>Up to date %1 h ago</source>
        <translation>Stand vor %1 Std.</translation>
    </message>
    <message>
        <source>Up to date on %1</source>
        <translation>Stand vom %1</translation>
    </message>
    <message>
        <source>Noted for %2: %1. The reminder service does not run here; the reminder comes once it does.</source>
        <translation>Vorgemerkt für %2: %1. Der Erinnerungsdienst läuft hier nicht; die Erinnerung kommt, sobald er läuft.</translation>
    </message>
    <message>
        <source>Noted for %2: %1. The reminder service waits for the desktop&apos;s keyring; the reminder comes once that is unlocked.</source>
        <translation>Vorgemerkt für %2: %1. Der Erinnerungsdienst wartet auf den Schlüsselbund der Arbeitsumgebung; die Erinnerung kommt, sobald der entsperrt ist.</translation>
    </message>
    <message>
        <source>Noted for %2: %1. The reminder service could not take the reminder; “orvan reminders” tells why.</source>
        <translation>Vorgemerkt für %2: %1. Der Erinnerungsdienst konnte die Erinnerung nicht annehmen; „orvan reminders“ sagt, warum.</translation>
    </message>
    <message>
        <source>Noted for %2: %1. The desktop asks you whether reminders are allowed; when you allow them, this one is set.</source>
        <translation>Vorgemerkt für %2: %1. Die Arbeitsumgebung fragt dich, ob Erinnerungen erlaubt sind; wenn du sie erlaubst, wird diese gestellt.</translation>
    </message>
    <message>
        <source>Noted for %2: %1. The desktop asks you whether reminders are allowed; when you have allowed them, “orvan reminders reconcile” sets this one.</source>
        <translation>Vorgemerkt für %2: %1. Die Arbeitsumgebung fragt dich, ob Erinnerungen erlaubt sind; wenn du sie erlaubt hast, stellt „orvan reminders reconcile“ diese.</translation>
    </message>
    <message>
        <source>Noted for %2: %1. No reminder comes, because reminders are not allowed; “orvan reminders allow” allows them.</source>
        <translation>Vorgemerkt für %2: %1. Es kommt keine Erinnerung, weil Erinnerungen nicht erlaubt sind; „orvan reminders allow“ erlaubt sie.</translation>
    </message>
    <message>
        <source>The follow-up is over already: %1</source>
        <translation>Die Vormerkung ist schon erledigt: %1</translation>
    </message>
    <message>
        <source>Noted for %2: %1. No reminder is set yet; “orvan reminders reconcile” tries again.</source>
        <translation>Vorgemerkt für %2: %1. Noch ist keine Erinnerung gestellt; „orvan reminders reconcile“ versucht es erneut.</translation>
    </message>
    <message>
        <source>You will be reminded on %2: %1</source>
        <translation>Du wirst erinnert, %2: %1</translation>
    </message>
    <message>
        <source>Noted for %2: %1. Nothing here shows notifications; the reminder comes as soon as something does.</source>
        <translation>Vorgemerkt für %2: %1. Hier zeigt nichts Benachrichtigungen an; die Erinnerung kommt, sobald etwas das tut.</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Mails</translation>
    </message>
    <message>
        <source>Calendar</source>
        <translation>Kalender</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Kontakte</translation>
    </message>
    <message>
        <source>in a mail program&apos;s settings</source>
        <translation>in den Einstellungen eines Mailprogramms</translation>
    </message>
    <message>
        <source>in your sent mail</source>
        <translation>in deinen gesendeten Mails</translation>
    </message>
    <message>
        <source>named in much of the mail</source>
        <translation>in vielen der Mails genannt</translation>
    </message>
    <message>
        <source>Follow-up done: %1</source>
        <translation>Erledigt: %1</translation>
    </message>
    <message>
        <source>Follow-up cancelled: %1</source>
        <translation>Abgesagt: %1</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>You</source>
        <comment>who wrote</comment>
        <translation>Du</translation>
    </message>
    <message>
        <source>Meeting</source>
        <translation>Treffen</translation>
    </message>
    <message>
        <source>Somebody</source>
        <translation>Jemand</translation>
    </message>
    <message>
        <source>wrote</source>
        <comment>in a table: who, what</comment>
        <translation>schrieb</translation>
    </message>
    <message>
        <source>A mail that waits for nothing</source>
        <translation>Eine Mail, die auf nichts wartet</translation>
    </message>
    <message>
        <source>%1, a mail that waits for nothing</source>
        <translation>%1, eine Mail, die auf nichts wartet</translation>
    </message>
    <message>
        <source>A conversation</source>
        <translation>Ein Gespräch</translation>
    </message>
    <message>
        <source>%1, a conversation</source>
        <translation>%1, ein Gespräch</translation>
    </message>
    <message>
        <source>May be the same: goes by the same full name.</source>
        <translation>Vielleicht dieselbe Person: Der volle Name ist gleich.</translation>
    </message>
    <message>
        <source>May be the same: goes by the same full name, which a contact card of yours has, too.</source>
        <translation>Vielleicht dieselbe Person: Der volle Name ist gleich und steht auch auf einer deiner Kontaktkarten.</translation>
    </message>
    <message>
        <source>You dismissed this reason. A new one brings them back by itself.</source>
        <translation>Du hast diesen Grund verworfen. Ein neuer bringt die Person von selbst zurück.</translation>
    </message>
    <message>
        <source>You resolved this. A new reason brings them back by itself.</source>
        <translation>Du hast das erledigt. Ein neuer Grund bringt die Person von selbst zurück.</translation>
    </message>
</context>
<context>
    <name>WrongMenu</name>
    <message>
        <source>What is wrong about %1?</source>
        <translation>Was stimmt nicht bei %1?</translation>
    </message>
    <message>
        <source>This is no question</source>
        <translation>Das ist keine Frage</translation>
    </message>
    <message>
        <source>It is never asked again, whatever mail is read. What else waits between you stays.</source>
        <translation>Sie gilt nie wieder als Frage, welche Mails auch gelesen werden. Was sonst zwischen euch offen ist, bleibt.</translation>
    </message>
    <message>
        <source>Nothing waits for my answer</source>
        <translation>Nichts wartet auf meine Antwort</translation>
    </message>
    <message>
        <source>The conversation leaves the list until another mail comes in it.</source>
        <translation>Das Gespräch verschwindet von der Liste, bis darin eine neue Mail kommt.</translation>
    </message>
    <message>
        <source>The reason itself stands in your mail or calendar. Dismiss takes it off the list for good.</source>
        <translation>Der Grund selbst steht in deinen Mails oder im Kalender. Verwerfen nimmt ihn endgültig von der Liste.</translation>
    </message>
    <message>
        <source>The name</source>
        <translation>Der Name</translation>
    </message>
    <message>
        <source>You give another, which no mail changes.</source>
        <translation>Du gibst einen anderen an, den keine Mail ändert.</translation>
    </message>
    <message>
        <source>They are the same as somebody else</source>
        <translation>Das ist dieselbe Person wie jemand anders</translation>
    </message>
    <message>
        <source>You choose who that is, and both become one person.</source>
        <translation>Du wählst, wer das ist, und aus beiden wird eine Person.</translation>
    </message>
    <message>
        <source>%1 is somebody else&apos;s</source>
        <translation>%1 gehört jemand anderem</translation>
    </message>
    <message>
        <source>The address becomes a person of its own, with its mail.</source>
        <translation>Aus der Adresse wird eine eigene Person, mit ihren Mails.</translation>
    </message>
    <message>
        <source>They should not be here at all</source>
        <translation>Die Person gehört gar nicht hierher</translation>
    </message>
    <message>
        <source>They are hidden: never on the list, and nothing reminds of them. The search still finds them.</source>
        <translation>Sie wird ausgeblendet: Sie steht nie auf der Liste, und nichts erinnert an sie. Die Suche findet sie weiterhin.</translation>
    </message>
</context>
<context>
    <name>orvan::BackupModel</name>
    <message>
        <source>Last one on %1</source>
        <translation>Zuletzt am %1</translation>
    </message>
    <message>
        <source>None was made yet</source>
        <translation>Noch keine angelegt</translation>
    </message>
    <message>
        <source>Name a new file for the backup.</source>
        <translation>Nenne eine neue Datei für die Sicherung.</translation>
    </message>
    <message>
        <source>Stopped. There is no new backup.</source>
        <translation>Angehalten. Es gibt keine neue Sicherung.</translation>
    </message>
    <message>
        <source>The backup is whole: %1 (%2).</source>
        <translation>Die Sicherung ist vollständig: %1 (%2).</translation>
    </message>
    <message>
        <source>A copy of the key is in %1. Keep it away from the backup: whoever has both can read everything.</source>
        <translation>Eine Kopie des Schlüssels ist in %1. Bewahre sie getrennt von der Sicherung auf: Wer beides hat, kann alles lesen.</translation>
    </message>
    <message>
        <source>It opens only with the key that the store has now. Keep a copy of that key somewhere else.</source>
        <translation>Sie öffnet sich nur mit dem Schlüssel, den der Datenbestand jetzt hat. Bewahre eine Kopie davon anderswo auf.</translation>
    </message>
</context>
<context>
    <name>orvan::ContactField</name>
    <message>
        <source>They wait for you</source>
        <translation>Warten auf dich</translation>
    </message>
    <message>
        <source>Nobody waits</source>
        <translation>Niemand wartet</translation>
    </message>
    <message>
        <source>You wrote last</source>
        <translation>Du hast zuletzt geschrieben</translation>
    </message>
    <message>
        <source>today</source>
        <translation>heute</translation>
    </message>
    <message>
        <source>two years ago</source>
        <translation>vor zwei Jahren</translation>
    </message>
    <message>
        <source>a month ago</source>
        <translation>vor einem Monat</translation>
    </message>
    <message>
        <source>a year ago</source>
        <translation>vor einem Jahr</translation>
    </message>
    <message>
        <source>a week ago</source>
        <translation>vor einer Woche</translation>
    </message>
    <message>
        <source>3 months ago</source>
        <translation>vor 3 Monaten</translation>
    </message>
</context>
<context>
    <name>orvan::CorrectionsModel</name>
    <message>
        <source>Hidden: %1</source>
        <translation>Ausgeblendet: %1</translation>
    </message>
    <message>
        <source>Hidden already: %1</source>
        <translation>Schon ausgeblendet: %1</translation>
    </message>
    <message>
        <source>Shown again: %1</source>
        <translation>Wieder zu sehen: %1</translation>
    </message>
    <message>
        <source>Hidden: a conversation with %1</source>
        <translation>Ausgeblendet: ein Gespräch mit %1</translation>
    </message>
    <message>
        <source>Shown again: a conversation with %1</source>
        <translation>Wieder zu sehen: ein Gespräch mit %1</translation>
    </message>
    <message>
        <source>One person now: %1 and %2</source>
        <translation>Jetzt eine Person: %1 und %2</translation>
    </message>
    <message>
        <source>A person of its own now: %1</source>
        <translation>Jetzt eine eigene Person: %1</translation>
    </message>
    <message>
        <source>Called as mail says: no longer %1</source>
        <translation>Heißt wie in den Mails: nicht mehr %1</translation>
    </message>
    <message>
        <source>Called as mail says already: %1</source>
        <translation>Heißt schon wie in den Mails: %1</translation>
    </message>
    <message>
        <source>Renamed: %1</source>
        <translation>Umbenannt: %1</translation>
    </message>
    <message>
        <source>Noted that this was wrong: %1</source>
        <translation>Als falsch vermerkt: %1</translation>
    </message>
    <message>
        <source>Back on the list: %1</source>
        <translation>Wieder auf der Liste: %1</translation>
    </message>
    <message>
        <source>There is no message to open: Orvan knows by name only mail to you.</source>
        <translation>Es gibt keine Mail zu öffnen: Orvan kann nur Mails an dich benennen.</translation>
    </message>
</context>
<context>
    <name>orvan::FirstStartModel</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Not everything could be looked at.</source>
        <translation>Nicht alles war zugänglich.</translation>
    </message>
    <message>
        <source>remembered already</source>
        <translation>schon vorgemerkt</translation>
    </message>
    <message>
        <source>known already</source>
        <translation>schon bekannt</translation>
    </message>
    <message>
        <source>empty</source>
        <translation>leer</translation>
    </message>
    <message>
        <source>%1 — in use by its program, and can be read all the same</source>
        <translation>%1 – gerade von seinem Programm benutzt und trotzdem lesbar</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>That is no mail address; one looks like robin@example.org.</source>
        <translation>Das ist keine Mailadresse; eine sieht aus wie robin@example.org.</translation>
    </message>
    <message numerus="yes">
        <source>Everything is read; %n new.</source>
        <comment>mails, meetings and contacts</comment>
        <translation>
            <numerusform>Alles ist gelesen; %n Neues.</numerusform>
            <numerusform>Alles ist gelesen; %n Neue.</numerusform>
        </translation>
    </message>
    <message>
        <source>Everything is read; nothing is new.</source>
        <translation>Alles ist gelesen; nichts ist neu.</translation>
    </message>
    <message>
        <source>Your keyring is locked. Unlock it with the desktop&apos;s password program and start again, or keep the key in a file.</source>
        <translation>Dein Schlüsselbund ist gesperrt. Entsperre ihn mit dem Passwortprogramm der Arbeitsumgebung und beginne noch einmal, oder lege den Schlüssel in eine Datei.</translation>
    </message>
    <message>
        <source>The keyring did not take the key. Start again, or keep the key in a file.</source>
        <translation>Der Schlüsselbund hat den Schlüssel nicht angenommen. Beginne noch einmal, oder lege den Schlüssel in eine Datei.</translation>
    </message>
    <message>
        <source>%1. %2 %3</source>
        <comment>what is wrong, what to do, and a command</comment>
        <translation>%1. %2 %3</translation>
    </message>
    <message>
        <source>Thunderbird keeps its own calendar and address book in databases. Export them there as .ics and .vcf files, and add those.</source>
        <translation>Thunderbird hält seinen eigenen Kalender und sein Adressbuch in Datenbanken. Exportiere sie dort als .ics- und .vcf-Dateien und füge diese hinzu.</translation>
    </message>
</context>
<context>
    <name>orvan::FollowUpsModel</name>
    <message>
        <source>Get back to %1</source>
        <translation>Bei %1 melden</translation>
    </message>
    <message>
        <source>That time has passed.</source>
        <translation>Dieser Zeitpunkt ist vorbei.</translation>
    </message>
    <message>
        <source>Couldn&apos;t save — try again</source>
        <translation>Couldn&apos;t save — try again</translation>
    </message>
    <message>
        <source>Now is when you wanted to get back to %1: %2</source>
        <translation>Jetzt wolltest du dich bei %1 melden: %2</translation>
    </message>
</context>
<context>
    <name>orvan::HiddenThingsModel</name>
    <message>
        <source>Hidden since %1</source>
        <translation>Ausgeblendet seit %1</translation>
    </message>
    <message>
        <source>Nobody is hidden</source>
        <translation>Niemand ist ausgeblendet</translation>
    </message>
    <message>
        <source>%1 hidden</source>
        <translation>%1 ausgeblendet</translation>
    </message>
    <message>
        <source>Shown again: %1</source>
        <translation>Wieder zu sehen: %1</translation>
    </message>
</context>
<context>
    <name>orvan::OverviewModel</name>
    <message>
        <source>%1 (%2)</source>
        <comment>a name and an address</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>last contact %1</source>
        <comment>with a date</comment>
        <translation>zuletzt %1</translation>
    </message>
    <message>
        <source>since %1</source>
        <comment>with a date</comment>
        <translation>seit %1</translation>
    </message>
    <message>
        <source>Drifted away</source>
        <translation>Haben sich entfernt</translation>
    </message>
    <message>
        <source>Nobody has drifted away.</source>
        <translation>Niemand hat sich entfernt.</translation>
    </message>
    <message>
        <source>They wait for you</source>
        <translation>Warten auf dich</translation>
    </message>
    <message>
        <source>Nobody waits for you.</source>
        <translation>Niemand wartet auf dich.</translation>
    </message>
    <message>
        <source>You wrote last</source>
        <translation>Du hast zuletzt geschrieben</translation>
    </message>
    <message>
        <source>You wait for nobody.</source>
        <translation>Du wartest auf niemanden.</translation>
    </message>
    <message>
        <source>In touch: %1. Drifted away: %2. Waiting for you: %3. Not answered yet: %4.</source>
        <translation>In Kontakt: %1. Entfernt: %2. Warten auf dich: %3. Noch ohne Antwort: %4.</translation>
    </message>
    <message>
        <source>Last contact %1</source>
        <comment>with a date</comment>
        <translation>Letzter Kontakt: %1</translation>
    </message>
    <message>
        <source>Exchanged: %1 in a year, %2 the year before</source>
        <translation>Austausch: %1 in einem Jahr, %2 im Jahr davor</translation>
    </message>
    <message>
        <source>They wait for you since %1</source>
        <comment>with a date</comment>
        <translation>Wartet auf dich seit %1</translation>
    </message>
    <message>
        <source>You wrote last, on %1</source>
        <comment>with a date</comment>
        <translation>Zuletzt hast du geschrieben, am %1</translation>
    </message>
    <message>
        <source>It has never been quiet for so long</source>
        <translation>So lange war es noch nie still</translation>
    </message>
</context>
<context>
    <name>orvan::OwnAddressesModel</name>
    <message>
        <source>No mail that was read names it</source>
        <translation>Keine gelesene Mail nennt sie</translation>
    </message>
    <message>
        <source>None is known</source>
        <translation>Keine bekannt</translation>
    </message>
    <message>
        <source>1 address</source>
        <translation>1 Adresse</translation>
    </message>
    <message>
        <source>%1 addresses</source>
        <translation>%1 Adressen</translation>
    </message>
    <message>
        <source>That is no mail address. One looks like robin@example.org.</source>
        <translation>Das ist keine Mailadresse. Eine sieht aus wie robin@example.org.</translation>
    </message>
    <message>
        <source>%1 is known as yours already.</source>
        <translation>%1 ist schon als deine bekannt.</translation>
    </message>
    <message>
        <source>%1 is yours now.</source>
        <translation>%1 ist jetzt deine.</translation>
    </message>
    <message>
        <source>It was taken for %1&apos;s, whose other addresses stay theirs.</source>
        <translation>Sie galt als Adresse von %1; die übrigen Adressen bleiben dort.</translation>
    </message>
    <message>
        <source>It was taken for %1, who is nobody else any more.</source>
        <translation>Sie galt als %1; diese Person gibt es nun nicht mehr.</translation>
    </message>
    <message>
        <source>Mail and calendars are read again from their beginning.</source>
        <translation>Mails und Kalender werden noch einmal von Anfang an gelesen.</translation>
    </message>
    <message>
        <source>That is the only address known as yours, and without any there is no telling your mail from others&apos;. Add another first.</source>
        <translation>Das ist die einzige Adresse, die als deine bekannt ist, und ohne eine lassen sich deine Mails nicht von denen anderer unterscheiden. Füge zuerst eine weitere hinzu.</translation>
    </message>
    <message>
        <source>%1 is not yours any more.</source>
        <translation>%1 ist nicht mehr deine.</translation>
    </message>
    <message>
        <source>It is %1&apos;s again.</source>
        <translation>Sie gehört wieder zu %1.</translation>
    </message>
    <message>
        <source>Mail and calendars are read again from their beginning. Until that is done, what was read while it was yours stays as it is.</source>
        <translation>Mails und Kalender werden noch einmal von Anfang an gelesen. Bis das geschehen ist, bleibt, was gelesen wurde, als sie deine war, wie es ist.</translation>
    </message>
</context>
<context>
    <name>orvan::ReadingModel</name>
    <message>
        <source>Some of your mail, calendars and contacts is not read yet.</source>
        <translation>Ein Teil deiner Mails, Kalender und Kontakte ist noch nicht gelesen.</translation>
    </message>
    <message>
        <source>Stopping: what was read is being kept…</source>
        <translation>Wird angehalten: Das Gelesene wird gesichert …</translation>
    </message>
    <message>
        <source>Stopped. What was read so far is kept.</source>
        <translation>Angehalten. Was bisher gelesen wurde, ist gesichert.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1. %2</source>
        <translation>%1. %2</translation>
    </message>
    <message>
        <source>Looking for what is new…</source>
        <translation>Neues wird gesucht …</translation>
    </message>
    <message>
        <source>Reading the mail in %1</source>
        <translation>Mails werden gelesen: %1</translation>
    </message>
    <message>
        <source>Reading the calendar %1</source>
        <translation>Kalender wird gelesen: %1</translation>
    </message>
    <message>
        <source>Reading the contacts in %1</source>
        <translation>Kontakte werden gelesen: %1</translation>
    </message>
    <message numerus="yes">
        <source>%n more could not be read. Everything else is up to date.</source>
        <translation>
            <numerusform>%n weitere Quelle war nicht lesbar. Alles andere ist auf dem neuesten Stand.</numerusform>
            <numerusform>%n weitere Quellen waren nicht lesbar. Alles andere ist auf dem neuesten Stand.</numerusform>
        </translation>
    </message>
    <message>
        <source>Everything else is up to date.</source>
        <translation>Alles andere ist auf dem neuesten Stand.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <comment>the place of what is being read</comment>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>%1 read</source>
        <translation>%1 gelesen</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 a second</source>
        <translation>%1 pro Sekunde</translation>
    </message>
</context>
<context>
    <name>orvan::ReminderServiceModel</name>
    <message>
        <source>The reminder service runs since %1.</source>
        <translation>Der Erinnerungsdienst läuft seit %1.</translation>
    </message>
    <message>
        <source>The reminder service runs.</source>
        <translation>Der Erinnerungsdienst läuft.</translation>
    </message>
    <message>
        <source>No reminder is set.</source>
        <translation>Keine Erinnerung ist gestellt.</translation>
    </message>
    <message>
        <source>Reminders set: %1. The next one comes %2.</source>
        <translation>Gestellte Erinnerungen: %1. Die nächste kommt: %2.</translation>
    </message>
    <message>
        <source>Reminders set: %1.</source>
        <translation>Gestellte Erinnerungen: %1.</translation>
    </message>
    <message>
        <source>It last looked for new mail %1.</source>
        <translation>Nach neuen Mails sah er zuletzt: %1.</translation>
    </message>
    <message>
        <source>The service was started for another store. It shows this one&apos;s reminders, and does not look for its new mail.</source>
        <translation>Der Dienst wurde für einen anderen Datenbestand gestartet. Er zeigt auch die Erinnerungen von diesem, sieht aber nicht nach dessen neuen Mails.</translation>
    </message>
    <message>
        <source>Not allowed</source>
        <translation>Nicht erlaubt</translation>
    </message>
    <message>
        <source>Not allowed yet</source>
        <translation>Noch nicht erlaubt</translation>
    </message>
    <message>
        <source>Allowed</source>
        <translation>Erlaubt</translation>
    </message>
    <message>
        <source>Nothing can show them</source>
        <translation>Nichts kann sie anzeigen</translation>
    </message>
    <message>
        <source>The service does not run</source>
        <translation>Der Dienst läuft nicht</translation>
    </message>
    <message>
        <source>The service cannot be asked</source>
        <translation>Der Dienst ist nicht ansprechbar</translation>
    </message>
    <message>
        <source>A test reminder was shown. If you do not see it, look at your desktop&apos;s settings for notifications.</source>
        <translation>Eine Probe-Erinnerung wurde gezeigt. Wenn du sie nicht siehst, prüfe die Einstellungen deiner Arbeitsumgebung für Benachrichtigungen.</translation>
    </message>
</context>
<context>
    <name>orvan::SourcesModel</name>
    <message>
        <source>No sources yet</source>
        <translation>Noch keine Quellen</translation>
    </message>
    <message>
        <source>%1 of %2 sources cannot be read</source>
        <translation>%1 von %2 Quellen nicht lesbar</translation>
    </message>
    <message>
        <source>1 source</source>
        <translation>1 Quelle</translation>
    </message>
    <message>
        <source>%1 sources</source>
        <translation>%1 Quellen</translation>
    </message>
    <message>
        <source>%1 is taken off the list; what was read from it stays.</source>
        <translation>%1 wurde von der Liste genommen; was daraus gelesen wurde, bleibt.</translation>
    </message>
</context>
<context>
    <name>orvan::StoreSafetyModel</name>
    <message>
        <source>Encrypted with SQLCipher (AES-256)</source>
        <translation>Verschlüsselt mit SQLCipher (AES-256)</translation>
    </message>
    <message>
        <source>%1, SQLCipher %2</source>
        <translation>%1, SQLCipher %2</translation>
    </message>
    <message>
        <source>Encrypted, on this computer alone</source>
        <translation>Verschlüsselt, nur auf diesem Rechner</translation>
    </message>
    <message>
        <source>In the desktop&apos;s keyring</source>
        <translation>Im Schlüsselbund der Arbeitsumgebung</translation>
    </message>
    <message>
        <source>In a file that you alone can read: %1</source>
        <translation>In einer Datei, die nur du lesen kannst: %1</translation>
    </message>
    <message>
        <source>The key is in the desktop&apos;s keyring now. Keep a copy of it elsewhere: a backup can write one.</source>
        <translation>Der Schlüssel ist jetzt im Schlüsselbund der Arbeitsumgebung. Bewahre anderswo eine Kopie auf: Eine Sicherung kann eine schreiben.</translation>
    </message>
    <message>
        <source>The key is in its file now.</source>
        <translation>Der Schlüssel ist jetzt in seiner Datei.</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (Prozess %2)</translation>
    </message>
    <message>
        <source>Something has the store open, such as a backup or an import. Let it end, and try again; nothing was changed.</source>
        <translation>Etwas hat den Datenbestand offen, etwa eine Sicherung oder ein Import. Warte das Ende ab und versuche es noch einmal; es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>Another program has the store open: %1. Close it, and try again; nothing was changed.</source>
        <translation>Ein anderes Programm hat den Datenbestand offen: %1. Schließe es und versuche es noch einmal; es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>The store has a new key. Make a new backup, and keep a copy of the new key.</source>
        <translation>Der Datenbestand hat einen neuen Schlüssel. Lege eine neue Sicherung an und bewahre eine Kopie des neuen Schlüssels auf.</translation>
    </message>
    <message>
        <source>The former key, for backups made before, is in %1.</source>
        <translation>Der frühere Schlüssel, für ältere Sicherungen, ist in %1.</translation>
    </message>
</context>
<context>
    <name>orvan::WindowModel</name>
    <message>
        <source>Nothing is waiting between you.</source>
        <translation>Zwischen euch ist nichts offen.</translation>
    </message>
    <message>
        <source>The reason has changed meanwhile, so nothing was done: %1</source>
        <translation>Der Grund hat sich inzwischen geändert, darum geschah nichts: %1</translation>
    </message>
    <message>
        <source>Couldn&apos;t save — try again</source>
        <translation>Couldn&apos;t save — try again</translation>
    </message>
    <message>
        <source>The follow-up was over already, so nothing was done: %1</source>
        <translation>Die Vormerkung war schon erledigt, darum geschah nichts: %1</translation>
    </message>
    <message>
        <source>You have just decided about this. Undo brings it back.</source>
        <translation>Darüber hast du gerade entschieden. Rückgängig bringt es zurück.</translation>
    </message>
    <message>
        <source>Whom the link means is not in this store.</source>
        <translation>Wen der Link meint, steht nicht in diesem Datenbestand.</translation>
    </message>
</context>
</TS>
