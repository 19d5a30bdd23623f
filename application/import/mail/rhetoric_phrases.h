#pragma once

#include "application/import/mail/phrase_list.h"

namespace orvan {

// What people and programs say in questions that wait for nothing, a line or so for each language.

/// Words before and after a phrase that do not change what it says.
const PhraseList& leadWords();
const PhraseList& tailWords();
/// A sentence that says no more than one of these waits for nothing, nor does one that ends in one after a comma:
/// courtesies, figures of speech, and formulas of bulk mail.
const PhraseList& courtesies();
const PhraseList& figuresOfSpeech();
const PhraseList& bulkFormulas();
/// These wait for something only when they are all that is said.
const PhraseList& echoes();
/// However a sentence that begins so goes on, it waits for nothing.
const PhraseList& emptyBeginnings();
/// Fragments with which readers of advertisements are asked what they wish, and what they are then told to do.
const PhraseList& offerBeginnings();
const PhraseList& calls();
/// How the words go on after a question that its writer answers: one that asks why, and any.
const PhraseList& whyWords();
const PhraseList& reasons();
const PhraseList& answers();
/// How they go on after one that is done with, and after one that goes without saying. Languages whose verbs need no
/// word for the reader have few of these: there, the same words may go on after a question that asks.
const PhraseList& conclusions();
const PhraseList& assurances();
/// Little questions that ask for a consent after a proposal, and are courtesies elsewhere.
const PhraseList& agreements();
const PhraseList& thanks();
/// What is said of something that one only wants to praise or to laugh at, and what makes a question of it.
const PhraseList& judgements();
const PhraseList& negations();
const PhraseList& exclamationEnds();
const PhraseList& tags();
/// Words by which somebody's question is told.
const PhraseList& reportingWords();
/// Words for the reader, and those among them that mean nothing else in another language.
const PhraseList& readerWords();
const PhraseList& readerOnlyWords();
/// How a question to all begins.
const PhraseList& everybodyBeginnings();

} // namespace orvan
