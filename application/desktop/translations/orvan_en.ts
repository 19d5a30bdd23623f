<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
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
</TS>
