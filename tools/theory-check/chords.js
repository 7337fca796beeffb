#!/usr/bin/env node
// Holds the library's reading of typed chord names against an independent
// music theory package (@tonaljs/chord), over a corpus of real chord names:
// the chord dictionary of a guitar chord database (@tombatossals/chords-db)
// and every chord-type alias the theory package knows, on every root. The
// library never uses either package; only this check does.
//
// Run it:
//   npm ci --prefix tools/theory-check
//   cmake --build <build> && ctest --test-dir <build> -R chord_check --output-on-failure
// or by hand: node tools/theory-check/chords.js <build>/tests/chord_sample
//
// Where both read a name, the root and the bass must be the same pitch
// classes, and the library's flavour must hold the same chord tones as the
// package's chord type, unless one of the library's own rules (EXCEPTIONS)
// covers the name; every case a rule covers is counted in the report.
// Names only one side reads are counted, not judged: the library knows a
// fixed table of flavours, far fewer than the package.
//
// Exit status: 0 when every compared name agrees, 1 when any differs, 77 (a
// skip for CTest) when the packages are not installed, 2 when the sample
// program cannot be run.
'use strict';

const { execFileSync } = require('child_process');

let Chord, ChordType, Note, guitar;
try {
  Chord = require('@tonaljs/chord');
  ChordType = require('@tonaljs/chord-type');
  Note = require('@tonaljs/note');
  guitar = require('@tombatossals/chords-db/lib/guitar.json');
} catch (error) {
  console.log('the chord packages are not installed (npm ci --prefix tools/theory-check); skipped');
  process.exit(77);
}

if (process.argv.length < 3) {
  console.error('usage: chords.js <path of chord_sample>');
  process.exit(2);
}

// Root and bass codes of the library, 1 to 21, as pitch classes.
const CODE_CHROMA = [null, 0, 1, 1, 2, 3, 3, 4, 5, 4, 5, 6, 6, 7, 8, 8, 9, 10, 10, 11, 0, 11];

// The package's chord type for each library flavour; null where the package
// has no such chord ("sus b9", "7 alt", and 29, no flavour).
const FLAVOR_TYPE = ['M', 'm', 'dim', 'aug', 'maj7', 'm7', null, 'maj7#11', '7', 'm#5', 'm7b5', 'sus4', 'mMaj7',
  'maj7#5', '7#11', null, '7b9', '7#9', '7#5', 'm6', '6', '9', 'Madd9', 'maj9', '6add9', 'm9', 'm69', '7sus4',
  'sus2', null];

// The corpus: every root spelling both sides know (no H), every suffix of the
// chord database (its "major" and "minor" written as musicians write them)
// and every alias of the package's dictionary, alone and over two basses.
const ROOTS = [...new Set([...guitar.keys, 'C#', 'Db', 'D#', 'Gb', 'G#', 'A#', 'Cb', 'E#', 'Fb', 'B#'])];
const SUFFIXES = [...new Set([
  ...guitar.suffixes.map((s) => (s === 'major' ? '' : s === 'minor' ? 'm' : s)),
  ...ChordType.all().flatMap((type) => type.aliases),
])];
const BASSES = ['', '/E', '/Bb'];
const names = [];
for (const root of ROOTS)
  for (const suffix of SUFFIXES)
    for (const bass of suffix.includes('/') ? [''] : BASSES)
      names.push({ root, suffix, bass, name: root + suffix + bass });

// Where the library's rules deliberately differ from ordinary theory. Each
// rule covers some names in one field (the bass or the flavour) and says
// what is compared there instead (nothing, when `compare` is absent).
const EXCEPTIONS = [
  {
    field: 'bass',
    why: 'a bass on the root itself is kept as a bass (the package drops it), so the chord shows no chart',
    covers: (c) => c.bass > 0 && !c.theory.bass && CODE_CHROMA[c.bass] === Note.chroma(c.theory.tonic),
  },
  {
    field: 'flavour',
    why: '"dim7" reads as the flavour of "\u00B0", the diminished triad',
    covers: (c) => c.suffix === 'dim7',
    compare: (c) => c.flavour === 2,
  },
  {
    field: 'flavour',
    why: '"m11" and "maj11" read as "7#11"',
    covers: (c) => c.suffix === 'm11' || c.suffix === 'maj11',
    compare: (c) => c.flavour === 14,
  },
  {
    field: 'flavour',
    why: '"madd9" (and "-add9", "minadd9") reads as "m7add9", the minor ninth',
    covers: (c) => ['madd9', '-add9', 'minadd9'].includes(c.suffix),
    compare: (c) => c.flavour === 25,
  },
  {
    field: 'flavour',
    why: 'the punctuation !\'().,:;[]^_ is dropped before reading, so a caret triangle reads as the plain chord ' +
      '("^7" as "7") and brackets vanish',
    covers: (c) => /[!'().,:;[\]^_]/.test(c.suffix),
  },
];

let sample;
try {
  sample = execFileSync(process.argv[2], [], {
    encoding: 'utf8', input: names.map((n) => n.name).join('\n') + '\n', maxBuffer: 64 << 20,
  });
} catch (error) {
  console.error(`cannot run ${process.argv[2]}: ${error.message}`);
  process.exit(2);
}
const lines = sample.split('\n').filter((line) => line);
if (lines.length !== names.length) {
  console.error(`the sample answered ${lines.length} lines for ${names.length} names`);
  process.exit(2);
}

const counts = { both: 0, libraryOnly: 0, packageOnly: 0, neither: 0, agree: 0 };
const exceptionCounts = new Array(EXCEPTIONS.length).fill(0);
const libraryOnly = new Set();
const differences = [];

names.forEach((n, i) => {
  const [result, root, flavour, bass] = lines[i].split(' ').map(Number);
  const theory = Chord.get(n.name);
  const c = { ...n, result, root, flavour, bass, theory };
  if (!result) {
    counts[theory.empty ? 'neither' : 'packageOnly']++;
    return;
  }
  if (theory.empty) {
    counts.libraryOnly++;
    libraryOnly.add(n.suffix);
    return;
  }
  counts.both++;
  const problems = [];
  // The rule of the library that covers this name in `field`, counted.
  const ruleFor = (field) => {
    const index = EXCEPTIONS.findIndex((rule) => rule.field === field && rule.covers(c));
    if (index >= 0)
      exceptionCounts[index]++;
    return index >= 0 ? EXCEPTIONS[index] : null;
  };
  const judge = (field, agrees, describe) => {
    const rule = ruleFor(field);
    const ok = rule ? (rule.compare ? rule.compare(c) : true) : agrees();
    if (!ok)
      problems.push(describe() + (rule ? ` (under the rule: ${rule.why})` : ''));
  };
  if (CODE_CHROMA[root] !== Note.chroma(theory.tonic))
    problems.push(`root code ${root}, package tonic ${theory.tonic}`);
  judge('bass', () => (bass ? CODE_CHROMA[bass] : null) === (theory.bass ? Note.chroma(theory.bass) : null),
    () => `bass code ${bass}, package bass ${theory.bass || 'none'}`);
  const type = FLAVOR_TYPE[flavour];
  judge('flavour', () => (type ? ChordType.get(type).chroma : null) === theory.chroma,
    () => `flavour ${flavour} (${type || 'none'}), package ${theory.aliases[0] || theory.type}`);
  if (problems.length)
    differences.push(`${n.name}: ${problems.join('; ')}`);
  else
    counts.agree++;
});

console.log(`read ${names.length} chord names (${ROOTS.length} roots, ${SUFFIXES.length} suffixes): ` +
  `both read ${counts.both}, only the library ${counts.libraryOnly}, only the package ${counts.packageOnly}, ` +
  `neither ${counts.neither}`);
EXCEPTIONS.forEach((rule, i) => console.log(`  ${exceptionCounts[i]} by the library's own rule (${rule.field}): ${rule.why}`));
if (libraryOnly.size)
  console.log(`  suffixes only the library reads: ${[...libraryOnly].map((s) => JSON.stringify(s)).join(' ')}`);
if (differences.length > 0) {
  console.log(`${differences.length} differ from the package:`);
  for (const line of differences.slice(0, 200))
    console.log(`  ${line}`);
  process.exit(1);
}
console.log(`all ${counts.agree} names both read agree with the package`);
