// From objects as JSROOT reads them to values as people want them.

import { fillMissingFields } from './streamers.js';

const kNMirrors = 6;
const kNWords = 2000;
const kNPixels = 480;
const kNSlices = 100;
const kWordsPerPixel = 4;

/** A point in time, UTC: Unix seconds and the nanoseconds in them. */
export class Time {
  constructor(seconds, nanoseconds) {
    this.seconds = seconds;
    this.nanoseconds = nanoseconds;
  }

  /** To the millisecond, which is as fine as a Date gets. */
  get date() {
    return new Date(this.seconds * 1000 + Math.floor(this.nanoseconds / 1e6));
  }

  /** Nanoseconds since 1970-01-01 UTC. */
  get unixNanoseconds() {
    return BigInt(this.seconds) * 1000000000n + BigInt(this.nanoseconds);
  }

  /** ISO 8601 with nine digits, as "2016-12-31T23:59:59.000000001Z". */
  toString() {
    const seconds = new Date(this.seconds * 1000).toISOString().slice(0, 19);
    return `${seconds}.${String(this.nanoseconds).padStart(9, '0')}Z`;
  }
}

// 64-bit numbers become BigInt: JSROOT gives Number below 2^53 and BigInt above.
const kCounters = new Set(['fDeadTimeCounter', 'fVetoTimeCounter', 'fRunTimeCounter', 'fStnDaqDeadTime', 'fMirrorDaqDeadTime']);

const isObject = (value) => typeof value === 'object' && value !== null;
const isList = (value) => Array.isArray(value) || ArrayBuffer.isView(value);

function value(member, name) {
  if (isList(member)) return Array.from(member, (element) => value(element, name));
  if (isObject(member)) return new Time(member.fSec, member.fNanoSec);
  return kCounters.has(name) ? BigInt(member) : member;
}

/** Members by their names on file without the "f": `fEventNumber` is `eventNumber`. */
function record(object) {
  const members = Object.keys(object).filter((key) => /^f[A-Z]/.test(key) && key !== 'fUniqueID' && key !== 'fBits');
  return Object.fromEntries(members.map((key) => [key[1].toLowerCase() + key.slice(2), value(object[key], key)]));
}

/** 64-bit counters that are on file as 32-bit words, the low one first. */
function counters(words) {
  const flat = Array.from(words, (row) => (isList(row) ? Array.from(row) : row)).flat();
  return Array.from({ length: flat.length / 2 }, (_, i) => BigInt(flat[2 * i]) | (BigInt(flat[2 * i + 1]) << 32n));
}

/** An event header of any version. */
export function decodeHeader(object) {
  const header = record(fillMissingFields(object));
  header.deadTimeCounter = counters(object.fDeadTimeCounter);
  [header.vetoTimeCounter] = counters(object.fVetoTimeCounter);
  header.rawMirrorTime = header.rawMirrorTime.map((time, i) => ((header.mirrorDataBits >> i) & 1 ? time : null));
  return header;
}

const version = (code) => (code ? `${(code >> 16) & 0xff}.${(code >> 8) & 0xff}.${code & 0xff}` : null);

/** A run header; versions as texts, null where they are not known. */
export function decodeRunHeader(object) {
  const header = record(object);
  for (const name of ['evbVersion', 'stnEventVersion', 'mrEventVersion', 'readoutVersion'])
    header[name] = version(header[name]);
  return header;
}

/** A run trailer; the length of the run is 0 in files that do not have it. */
export function decodeRunTrailer(object) {
  return record({ ...object, fTotalTime: object.fTotalTime ?? 0 });
}

function require(object, name, limit) {
  const found = object[name];
  if (found <= limit) return found;
  throw new RangeError(`${object._typename}: ${name}: found ${found}, expected 0 to ${limit}`);
}

function requireEqual(object, name, expected) {
  if (object[name] !== expected) throw new RangeError(`${object._typename}: ${name}: found ${object[name]}, expected ${expected}`);
}

/** Half bytes, the first in the low bits of the first byte. */
function halves(bytes, n) {
  return Uint8Array.from({ length: 2 * n }, (_, i) => (bytes[i >> 1] >> (4 * (i & 1))) & 15);
}

/** The words of class version 1, in low and high bytes. */
function fillBytes(trace, words) {
  const nLow = require(trace, 'fNLow', kNWords - trace.fFirstLow);
  const nHigh = require(trace, 'fNHigh', kNWords - trace.fFirstHigh);
  for (let i = 0; i < nLow; ++i) words[trace.fFirstLow + i] = trace.fBase + trace.fLow[i];
  for (let i = 0; i < nHigh; ++i) words[trace.fFirstHigh + i] += trace.fHigh[i] << 8;
}

/** The words of class version 2: near, far or wide. */
function fillHalves(trace, words) {
  const n = require(trace, 'fNWords', kNWords - trace.fFirst);
  if (trace.fNNear !== 0) requireEqual(trace, 'fNNear', (n + 1) >> 1);
  const near = halves(trace.fNear, trace.fNNear);
  const far = halves(trace.fFar, trace.fNFar);
  let nFar = 0;
  let nWide = 0;
  for (let i = 0; i < n; ++i) {
    let difference = 57 + near[i];
    if (!(near[i] < 15)) {
      const half = near.length > 0 ? far[nFar++] : 15;
      difference = half < 7 ? 50 + half : 65 + half;
      if (half === 15) {
        difference = trace.fWideLow?.[nWide] + ((trace.fWideHigh?.[nWide - trace.fFirstWideHigh] ?? 0) << 8);
        ++nWide;
      }
    }
    words[trace.fFirst + i] = trace.fBase + difference;
  }
  requireEqual(trace, 'fNFar', (nFar + 1) >> 1);
  requireEqual(trace, 'fNWide', nWide);
}

/** The 2000 words of a trace (TFADCData), from their packed form. */
export function decodeWords(trace) {
  const words = new Uint16Array(kNWords);
  (trace.fNLow === undefined ? fillHalves : fillBytes)(trace, words);
  return words;
}

/** A trace: pixel, monitoring values, and the 12-bit samples of the bins from `startBin` to `endBin`. */
export function decodeTrace(object) {
  const mirror = (object.fPixelWord >> 9) & 7;
  const mirrorPixel = object.fPixelWord & 0x1ff;
  const startBin = object.fTraceInfo & 0xfff;
  const endBin = (object.fTraceInfo >> 12) & 0xfff;
  const words = decodeWords(object).subarray(startBin, endBin + 1);
  return {
    pixel: (mirror - 1) * kNPixels + mirrorPixel,
    mirror,
    mirrorPixel,
    startBin,
    endBin,
    words,
    samples: words.map((word) => word & 0xfff),
    startTime: object.fTraceStartTime,
    prevThreshold: object.fPrevThreshold,
    actualThreshold: object.fActualThreshold,
    actualRate: object.fActualRate,
    mean: object.fMean,
    variance: object.fVariance,
  };
}

/** The traces of an event (TStnFADCData), by ascending pixel number. */
export function decodeTraces(object) {
  return object.fFADCData.arr.filter((trace) => trace !== null).map(decodeTrace);
}

/** Station pixel numbers, ascending, of a pixel list (TStnPixelList). */
export function decodePixels(list) {
  const pixels = [];
  list.fPixelVector.forEach((word, i) => {
    for (let bit = 0; bit < 32; ++bit) if ((word >>> bit) & 1) pixels.push(32 * i + bit + 1);
  });
  return pixels;
}

function decodeMirrorTriggers(data, mirror) {
  const n = require(data, 'fNTriggered', kNPixels);
  return Array.from({ length: n }, (_, i) => {
    const words = data.fTriggerWord.slice(kWordsPerPixel * i, kWordsPerPixel * (i + 1));
    const slices = Array.from({ length: kNSlices }, (_, slice) => ((words[slice >> 5] >>> (slice & 31)) & 1) === 1);
    return { pixel: (mirror - 1) * kNPixels + data.fPixelNo[i], slices };
  });
}

/** The triggered pixels of an event (TStnPixelData): station pixel number, and a flag for each of 100 time slices. */
export function decodeTriggers(object) {
  return Array.from({ length: kNMirrors }, (_, i) => object.fPixelData[i])
    .flatMap((data, i) => (data ? decodeMirrorTriggers(data, i + 1) : []));
}
