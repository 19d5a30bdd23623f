#include "application/import/mail/rhetoric_phrases.h"

namespace orvan {

const PhraseList& leadWords() {
  static const PhraseList list{R"(
    hi | hello | hey | dear | and | but | so | well | oh | ok | now | anyway
    hallo | moin | na | und | aber | also | tja | liebe | lieber | salut | bonjour | coucou | et | mais | bon
    hola | buenas | y | pero | bueno | ciao | e | ma | hoi | en | maar | olá | oi | mas
    cześć | a | ale | привет | и | а | но | ну | ahoj | čau | hej | och | men | hei | moi
  )"};
  return list;
}

const PhraseList& tailWords() {
  static const PhraseList list{R"(
    today | now | then | there | these | days | all | both | everyone | guys | by | the | way
    so | denn | heute | euch | dir | ihnen | eigentlich | toi | vous | aujourd'hui | hoy | usted | ustedes
    vosotros
    oggi | tutti | voi | vandaag | allemaal | hoje | dziś | сегодня | dnes | idag | te | tu
  )"};
  return list;
}

const PhraseList& courtesies() {
  static const PhraseList list{R"(
    how are you | how are you doing | how're you | how are things | how are things with you | how is it going
    how's it going | how's life | how is everything | how's everything | how have you been | how do you do
    what's up
    how are the kids | how is the family | how's the family | how are you and the family | what's new | what is new
    what's new with you | all well with you | all good with you | how are we today
    wie geht's | wie gehts | wie geht es | wie geht es dir | wie geht's dir | wie gehts dir | wie geht es euch
    wie geht's euch | wie geht es ihnen | wie läuft's | wie läuft's bei dir | alles gut | alles gut bei dir
    alles gut bei euch | alles klar | alles klar bei dir | alles klar bei euch | geht's dir gut | was gibt's neues
    ça va | ca va | ça va bien | comment ça va | comment vas tu | comment allez vous | comment vas-tu
    comment allez-vous | tu vas bien | vous allez bien | quoi de neuf | comment va la famille
    cómo estás | como estas | cómo está | cómo están | cómo estáis | qué tal | que tal | qué tal estás
    qué tal todo
    cómo te va | cómo va todo | todo bien | qué hay de nuevo
    come stai | come sta | come state | come va | tutto bene | come vanno le cose
    hoe gaat het | hoe gaat het met je | hoe gaat het met jou | hoe gaat het met jullie | hoe is het | alles goed
    hoe is het met je | alles goed met je | alles goed bij jullie
    tudo bem | tudo bom | como vai | como está | como vais | como você está | tudo bem contigo | tudo bem com você
    co słychać | co u ciebie | co u was | co u ciebie słychać | jak się masz | jak leci
    как дела | как ты | как вы | как поживаешь | как поживаете | как ваши дела | как твои дела | что нового
    お元気ですか | いかがお過ごしですか | 元気ですか | 元気 | 你好吗 | 您好吗 | 你最近好吗 | 最近好吗 | 最近怎么样
    jak se máš | jak se máte | jak se daří | jak se vede | co je nového | hur mår du | hur är läget
    hur går det | läget
    allt bra | hvordan går det | hvordan har du det | mitä kuuluu | nasılsın | nasılsınız
  )"};
  return list;
}

const PhraseList& figuresOfSpeech() {
  static const PhraseList list{R"(
    who knows | who cares | so what | what else is new | what now | guess what | you know what | know what
    where was i
    what can i say | what do i know | what can you do | what more could you want | what more can you want
    why bother
    need i say more | how hard can it be | what could go wrong | what could possibly go wrong
    what's not to like | can you believe it | can you believe that | would you believe it | is it just me
    are you kidding | are you kidding me | you know | remember | know what i mean | you know what i mean | fyi
    see what i mean | who would have thought | who would have thought it | who'd have thought | who knew | get it
    any questions | questions | do you have any questions | any other questions | any further questions
    coincidence
    wer weiß | wer weiss | na und | was solls | was soll's | was will man mehr | wer hätte das gedacht
    wozu auch | wo sonst | wo auch sonst | wer sonst | was sonst
    wem sagst du das | weißt du | weißt du noch | noch fragen | fragen | haben sie fragen | sie haben fragen
    haben sie noch fragen | hast du noch fragen | habt ihr noch fragen | gibt es noch fragen
    kannst du dir das vorstellen | was tun
    qui sait | et alors | à quoi bon | que demander de plus | que veux tu | que veux-tu | que voulez-vous
    tu te souviens | tu te rends compte | qui l'eût cru | des questions | avez-vous des questions
    quién sabe | y qué | qué más da | para qué | qué más se puede pedir | te acuerdas | quién lo diría
    preguntas | alguna pregunta
    chi lo sa | chissà | chi se lo aspettava | e allora | che dire | cosa vuoi di più | ti ricordi
    che ci vuoi fare | domande | ci sono domande
    wie weet | nou en | wat wil je nog meer | wie had dat gedacht | weet je nog | vragen
    quem sabe | e daí | fazer o quê | quem diria | dúvidas | alguma dúvida | kto wie | i co z tego | pamiętasz
    kto by pomyślał | pytania
    кто знает | ну и что | что поделаешь | помнишь | есть вопросы | кто бы мог подумать | вопросы | 谁知道呢 | どうしよう
    kdo ví | no a co | vem vet | än sen | otázky | frågor
  )"};
  return list;
}

const PhraseList& bulkFormulas() {
  static const PhraseList list{R"(
    not you | wasn't you | wasn't this you | this wasn't you | not me | didn't request this | forgot your password
    how did we do | how are we doing | was this helpful | was this email helpful | did you know
    wussten sie schon | wussten sie | le saviez vous | le saviez-vous | sabías que | lo sapevi | wist je dat
    sabia que
  )"};
  return list;
}

const PhraseList& echoes() {
  static const PhraseList list{R"(
    why not | what for | for what | really | seriously | honestly | what | huh | eh | hm | hmm | oh | echt
    wirklich | ernsthaft | im ernst | was
    wie bitte | warum nicht | pourquoi pas | vraiment | ah bon | por qué no | de verdad | en serio | perché no
    davvero
    waarom niet | porque não | por que não | a sério | sério | dlaczego nie | naprawdę | почему бы и нет | правда
    серьёзно | 本当 | 本当に | 真的吗 | proč ne | opravdu | varför inte | verkligen
  )"};
  return list;
}

const PhraseList& emptyBeginnings() {
  static const PhraseList list{R"(
    is there anything else i can | anything else i can | anything else we can | remember when | remember how
    why would anyone | why would anybody | why does anyone | how can anyone | how could anyone | how can anybody
    how could i miss | how could i forget | how could i have | how did i miss | who am i kidding | told you so
    where does the time go | where did the time go | where has the time gone | what to do | what's the point
    to be or not to be | is the pope catholic | the question is who | the question is why | the question is what
    who am i to | who are we to | who needs | who doesn't | who hasn't | who didn't | who wouldn't
    who would have thought | who said | guess what
    what could possibly | what were they thinking | what was i thinking | do you really need to print
    having trouble | trouble viewing | can't see this | can't see the | can't view this | can't read this
    unable to view | is this email not | is this message not | is this e-mail not | email not displaying
    want to unsubscribe | don't want to receive | want to stop receiving | no longer want to receive
    want to change how you | want to update your preferences
    you asked whether | you asked if | you asked me whether | you asked me if | you wanted to know
    wer braucht schon | wer will schon | wer hätte gedacht | wer hätte das | du hast gefragt | sie haben gefragt
    was soll man | was soll ich sagen | was soll ich dazu | wie kann man nur | wer sagt's denn | wo kommen wir denn
    wo ist nur die zeit | die frage ist wer | die frage ist warum | die frage ist was | du wolltest wissen
    sie möchten keine | keine e-mails mehr | wird diese e-mail nicht | probleme mit der darstellung
    vous n'arrivez pas à lire | vous ne voyez pas | si ce message ne | vous ne souhaitez plus | qui n'a jamais
    qui a besoin | pourquoi faire simple | que dire | qui aurait cru | comment ne pas | qué se le va a hacer
    qué vamos a hacer | quién iba a | chi l'avrebbe | come si fa a | tu m'as demandé | no puedes ver
    no puede ver | problemas para ver | no quieres recibir
    quién necesita | me preguntaste | non riesci a | non visualizzi | non vuoi più | chi ha bisogno
    kun je deze | wordt deze e-mail niet | geen e-mails meer | não consegue ver | nie widzisz | не отображается
  )"};
  return list;
}

const PhraseList& offerBeginnings() {
  static const PhraseList list{R"(
    need | want | ready | looking | tired | interested | curious | thinking | prefer | forgot | trouble
    problems | got
    feeling | new | love | more | changed | lost | missed | bored | stuck | moving | planning | worried
    questions | any
    lust | interesse | neugierig | noch | brauchen | benötigen | suchen | probleme | bereit
    envie | besoin | intéressé | prêt | quieres | necesitas | listo | interesado | vuoi | cerchi | interessato
    pronto
    wil | klaar | precisa | quer | chcesz | szukasz | хотите | нужна | ищете
  )"};
  return list;
}

const PhraseList& calls() {
  static const PhraseList list{R"(
    click | visit | call us | call our | call now | call today | contact us | contact our | contact your | book
    view
    open | shop | buy | save | manage | reset | check out | get your | get started | get it | try our | try it
    download
    sign up | register | subscribe | learn | discover | read more | find out | find your | rate | order | upgrade
    join us | join now | start your | start now | reply to | just reply | see our | go to | change your | email us
    write to us | we can help | we help
    klicken | besuchen | rufen | hier | jetzt | entdecken | melden sie | kontaktieren | schreiben sie
    cliquez | consultez | découvrez | contactez | rendez-vous | profitez | haz clic | visita | descubre
    contacta | llama
    clicca | scopri | contatta | chiama | klik | bezoek | ontdek | neem contact | clique | visite | descubra
    kliknij | sprawdź | odkryj | zadzwoń | нажмите | перейдите | позвоните
  )"};
  return list;
}

const PhraseList& reasons() {
  static const PhraseList list{R"(
    because | well because | simple | easy | weil | ganz einfach | parce que | porque | perché | omdat
    ponieważ | bo
    потому что | 因为* | なぜなら* | protože | eftersom | för att
  )"};
  return list;
}

const PhraseList& whyWords() {
  static const PhraseList list{R"(
    why | how come | warum | wieso | weshalb | pourquoi | por qué | perché | waarom | por que | porquê
    dlaczego | czemu
    почему | зачем | 为什么* | なぜ* | どうして* | proč | varför | hvorfor | miksi | neden
  )"};
  return list;
}

const PhraseList& answers() {
  static const PhraseList list{R"(
    no idea | yes | yep | yeah | no | nope | not yet | not really | of course not | y n | yes no
    keine ahnung | ja | nein | doch | noch nicht | aucune idée | oui | non | si | pas encore
    ni idea | sí | todavía no | boh | non ancora | geen idee | nee | nog niet | não faço ideia
    sim | não
    nie mam pojęcia | tak | nie | jeszcze nie | понятия не имею | да | нет | ещё нет | ano | ne | ještě ne
    nej | inte än
  )"};
  return list;
}

const PhraseList& conclusions() {
  static const PhraseList list{R"(
    turns out | it turns out | it turned out | turned out | apparently | anyway | anyhow | but then | never mind
    nevermind | forget it | found it | that is the question | that's the question | the answer
    jedenfalls | egal | wie auch immer | na ja | naja | stellt sich heraus | es stellte sich heraus | bref | peu importe
    il s'avère | resulta que | a quanto pare | hoe dan ook | blijkt | okazało się | оказалось | ukázalo se | hur som helst
  )"};
  return list;
}

const PhraseList& assurances() {
  static const PhraseList list{R"(
    of course | obviously | natürlich | selbstverständlich | bien sûr | évidemment | natuurlijk | såklart
  )"};
  return list;
}

const PhraseList& negations() {
  static const PhraseList list{R"(
    not | isn't | aren't | wasn't | ain't | nicht | pas | n'est | no | non | niet | não | nie | не | není
    inte | ikke
    разве
  )"};
  return list;
}

const PhraseList& agreements() {
  static const PhraseList list{R"(
    ok | okay | right | alright | klar | alles klar | gut | d'accord | vale | va bene | ça va | todo bien
    tutto bene
    tudo bem | tudo bom | alles gut | alles goed | allt bra | todo bien
  )"};
  return list;
}

const PhraseList& thanks() {
  static const PhraseList list{R"(
    thank | thanks | many thanks | thx | danke | vielen dank | merci | gracias | grazie | bedankt | dank | obrigad*
    dzięk* | спасибо | 谢谢* | ありがとう* | díky | děkuj* | tack
  )"};
  return list;
}

const PhraseList& judgements() {
  static const PhraseList list{R"(
    great | nice | lovely | beautiful | wonderful | amazing | awesome | cool | funny | crazy | cute | sweet
    ridiculous
    weird | schön | toll | super | herrlich | lustig | witzig | verrückt | süß | wunderbar | geil | krass
    beau | belle | génial | drôle | magnifique | bonito | bonita | genial | maravilloso | gracioso
    bello | bella | fantastico | divertente | mooi | leuk | geweldig | lindo | linda | ótimo | piękne | świetne
    красиво | здорово | krásné | skvělé | fint | härligt
  )"};
  return list;
}

const PhraseList& exclamationEnds() {
  static const PhraseList list{"is that | is this | was that | ist das | ist das denn | war das | ist das bitte"};
  return list;
}

const PhraseList& tags() {
  static const PhraseList list{R"(
    isn't it | is it not | aren't they | wasn't it | weren't they | don't you think | eh | huh | no
    nicht wahr | oder
    gell | nicht | non | hein | n'est-ce pas | verdad | vero | toch | hè | né | não é | prawda | nie | правда
    да | že
    eller hur
  )"};
  return list;
}

const PhraseList& reportingWords() {
  static const PhraseList list{R"(
    asked | asks | said | says | thought | wrote | replied | fragte | gefragt | sagte | meinte | dachte | schrieb
    demandé | demande | dit | pensé | preguntó | pregunté | dijo | pensó | chiesto | chiese | disse | detto
    vroeg | zei
    dacht | perguntou | pensei | zapytał | zapytała | powiedział | спросил | спросила | сказал | подумал
    zeptal | zeptala | řekl | frågade | sa
  )"};
  return list;
}

const PhraseList& readerWords() {
  static const PhraseList list{R"(
    you | your | u | du | dich | dir | dein | deine | deinem | deiner | ihr | euch | sie | ihnen | ihre
    tu | te | toi | vous | votre | ton | ta | tes | tú | ti | usted | je | jij | jou | jullie | você | vocês
    ty | ci | pan | pani | ты | тебя | тебе | вы | вас | вам | dig | ni | deg
  )"};
  return list;
}

const PhraseList& readerOnlyWords() {
  static const PhraseList list{"you | your | dir | dich | dein | deine | deinem | deiner | euch"};
  return list;
}

const PhraseList& everybodyBeginnings() {
  static const PhraseList list{R"(
    does anyone | does anybody | has anyone | has anybody | is anyone | is anybody | can anyone | can anybody
    anyone
    could anyone | could anybody | can someone | can somebody | could someone | could somebody | would anyone
    anybody
    would anybody | would someone | will anyone | do any of you | have any of you | who of you | who among you
    kann jemand | kann wer | könnte jemand | hat jemand | hat irgendjemand | weiß jemand | weiss jemand
    kennt jemand
    ist jemand | will jemand | möchte jemand | mag jemand | jemand | braucht jemand | hätte jemand | wer von euch
    quelqu'un | est-ce que quelqu'un | est-ce que l'un d'entre vous | qui d'entre vous
    alguien | sabe alguien | tiene alguien | puede alguien | qualcuno | sa qualcuno | chi di voi
    iemand | heeft iemand | kan iemand | weet iemand | wie van jullie | alguém
    ktoś | czy ktoś | ma ktoś | кто-нибудь | кто-то | есть кто-нибудь | может кто | может ли кто
    誰か* | どなたか* | 有人* | 有没有人* | 哪位* | 有誰*
    má někdo | ví někdo | může někdo | někdo | neví někdo | nemá někdo
    är det någon som | någon | har någon | kan någon | vet någon | noen | har noen | kan noen | vet noen
    er der nogen som | har nogen | kan nogen | nogen
  )"};
  return list;
}

} // namespace orvan
