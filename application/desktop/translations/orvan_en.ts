<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>ContactPicture</name>
    <message numerus="yes">
        <source>%n mails</source>
        <translation>
            <numerusform>%n mail</numerusform>
            <numerusform>%n mails</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n times</source>
        <translation>
            <numerusform>%n time</numerusform>
            <numerusform>%n times</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>quiet for %n weeks</source>
        <translation>
            <numerusform>quiet for %n week</numerusform>
            <numerusform>quiet for %n weeks</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PersonPage</name>
    <message numerus="yes">
        <source>%n earlier</source>
        <translation>
            <numerusform>%n earlier</numerusform>
            <numerusform>%n earlier</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Refusal</name>
    <message numerus="yes">
        <source>%1 And %n more.</source>
        <comment>files with which something is wrong</comment>
        <translation>
            <numerusform>%1 And %n more.</numerusform>
            <numerusform>%1 And %n more.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>orvan::FirstStartModel</name>
    <message numerus="yes">
        <source>Everything is read; %n new.</source>
        <comment>mails, meetings and contacts</comment>
        <translation>
            <numerusform>Everything is read; %n new.</numerusform>
            <numerusform>Everything is read; %n new.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>orvan::ReadingModel</name>
    <message numerus="yes">
        <source>%n more could not be read. Everything else is up to date.</source>
        <translation>
            <numerusform>%n more could not be read. Everything else is up to date.</numerusform>
            <numerusform>%n more could not be read. Everything else is up to date.</numerusform>
        </translation>
    </message>
</context>
</TS>
