// Everything that this package gives of a file, against the library's values.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtemp, readFile, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test from 'node:test';
import { fileURLToPath } from 'node:url';

import { Time, decodeWords, open } from '../index.js';
import { header, libraryValues, values } from './values.js';

const path = (name) => fileURLToPath(new URL(`../../test/${name}`, import.meta.url));
const golden = path('golden/run.root');

async function damaged(name, change) {
  const file = join(await mkdtemp(join(tmpdir(), 'stnevent-')), name);
  await writeFile(file, change(await readFile(golden)));
  return file;
}

for (const name of ['run', 'run-trace-1']) {
  test(`${name} has the values that the library gives`, async () => {
    const run = await open(path(`golden/${name}.root`));
    assert.deepEqual(await values(run), libraryValues(await readFile(path('golden/run.json'), 'utf8')));
  });
}

test('a run can be read from bytes in memory', async () => {
  const { buffer, byteOffset, byteLength } = await readFile(golden);
  const run = await open(buffer.slice(byteOffset, byteOffset + byteLength));
  assert.equal((await run.headers()).length, 5);
});

test('some headers are read by entry', async () => {
  const run = await open(golden);
  assert.deepEqual(await run.headers(2, 2), (await run.headers()).slice(2, 4));
  assert.deepEqual(await run.headers(5), []);
});

test('entries that do not exist are refused', async () => {
  const run = await open(golden);
  await assert.rejects(run.headers(4, 2), /run\.root: entries 4 to 5 of 5$/);
  await assert.rejects(run.traces(5), RangeError);
});

// The folder of the project's programs, of which one prints the library's values.
const programs = process.env.STN_BIN;
const skip = programs ? false : 'STN_BIN does not name the folder of the programs';
for (const name of ['header-4', 'header-5', 'header-6', 'header-7', 'header-8', 'header-9', 'list-2', 'list-3', 'event-1', 'event-5']) {
  test(`headers and pixels of ${name} have the values that the library gives`, { skip }, async () => {
    const file = path(`old/golden/${name}.root`);
    const expected = libraryValues(execFileSync(join(programs, 'dump_events'), [file], { encoding: 'utf8' })).events;
    const run = await open(file);
    assert.deepEqual((await run.headers()).map(header), expected.map((event) => event.header));
    for (let entry = 0; entry < run.length; ++entry)
      assert.deepEqual(await run.pixels(entry), expected[entry].pixels);
  });
}

test('a run without events has its records', { skip }, async () => {
  const file = join(await mkdtemp(join(tmpdir(), 'stnevent-')), 'empty.root');
  execFileSync(join(programs, 'stn-simulate'), ['--events', '0', file]);
  const run = await open(file);
  assert.deepEqual([run.length, await run.headers()], [0, []]);
  assert.deepEqual([(await run.runHeader()).runNo, (await run.runTrailer()).nEvents], [1, 0]);
});

test('what is no station file is refused', async () => {
  await assert.rejects(async () => open(await damaged('text.root', () => 'no ROOT file')));
  await assert.rejects(open('/nowhere/run.root'));
});

for (const part of [0.5, 0.9, 0.99]) {
  test(`a file of which ${part} is there is refused`, async () => {
    await assert.rejects(async () => open(await damaged('cut.root', (bytes) => bytes.subarray(0, bytes.length * part))));
  });
}

test('a time has nanoseconds, a date and a text', () => {
  const time = new Time(1483228799, 1);
  assert.equal(time.unixNanoseconds, 1483228799000000001n);
  assert.equal(time.date.getTime(), 1483228799000);
  assert.equal(String(time), '2016-12-31T23:59:59.000000001Z');
});

test('a trace with impossible counts is refused', () => {
  const trace = { _typename: 'TFADCData', fBase: 0, fFirstLow: 10, fFirstHigh: 0, fNLow: 1991, fNHigh: 0, fLow: [], fHigh: [] };
  assert.throws(() => decodeWords(trace), { name: 'RangeError', message: 'TFADCData: fNLow: found 1991, expected 0 to 1990' });
});

const kQuiet = { _typename: 'TFADCData', fBase: 116, fFirst: 10, fNWords: 3, fFirstWideHigh: 1, fNNear: 2, fNFar: 1,
                 fNWide: 0, fNWideHigh: 0, fNear: [0xf7, 0x07], fFar: [0x06] };

test('a trace has near, far and wide words', () => {
  assert.deepEqual([...decodeWords(kQuiet).subarray(9, 14)], [0, 180, 172, 180, 0]);
  const above = { ...kQuiet, fFar: [0x07] };
  assert.deepEqual([...decodeWords(above).subarray(9, 14)], [0, 180, 188, 180, 0]);
  const wide = { ...kQuiet, fNear: [0xff, 0x07], fFar: [0xff], fNWide: 2, fWideLow: [0, 200], fNWideHigh: 1, fWideHigh: [3] };
  assert.deepEqual([...decodeWords(wide).subarray(9, 14)], [0, 116, 116 + 200 + 3 * 256, 180, 0]);
  const bytes = { ...kQuiet, fNNear: 0, fNFar: 0, fNWide: 3, fWideLow: [1, 2, 3] };
  assert.deepEqual([...decodeWords(bytes).subarray(9, 14)], [0, 117, 118, 119, 0]);
});

for (const [member, found, expected] of [['fNWords', 1991, '0 to 1990'], ['fNNear', 3, '2'], ['fNFar', 0, '1'], ['fNWide', 1, '0']]) {
  test(`a trace with another ${member} is refused`, () => {
    assert.throws(() => decodeWords({ ...kQuiet, [member]: found }),
                  { name: 'RangeError', message: `TFADCData: ${member}: found ${found}, expected ${expected}` });
  });
}
