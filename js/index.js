// Station files in browsers and Node.js. See README.md.

import { openFile } from 'jsroot/io';
import { TSelector, treeProcess } from 'jsroot/tree';

import { decodeHeader, decodePixels, decodeRunHeader, decodeRunTrailer, decodeTraces, decodeTriggers } from './decode.js';

export { Time, decodeHeader, decodePixels, decodeTrace, decodeTraces, decodeTriggers, decodeWords } from './decode.js';

const kRecords = ['RunHeader', 'StnEventTree', 'RunTrailer'];

/** Collects one sub-branch of the events that are read. */
class Collector extends TSelector {
  constructor(branch, decode) {
    super();
    this.addBranch(`StnEvent.${branch}`, 'object');
    this.decode = decode;
    this.values = [];
    this.error = null;
  }

  Process() {
    try {
      this.values.push(this.tgtobj.object && this.decode(this.tgtobj.object));
    } catch (error) {
      this.error ??= error; // JSROOT would go on with it
      this.Abort();
    }
  }
}

/** A station file, open for reading. */
class Run {
  constructor(file, tree) {
    this.file = file;
    this.tree = tree;
  }

  /** The number of events. */
  get length() {
    return this.tree ? this.tree.fEntries : 0;
  }

  /** The run header; null if there is none. */
  async runHeader() {
    return this.#record('RunHeader', decodeRunHeader);
  }

  /** The run trailer; null if there is none, as when the run did not end regularly. */
  async runTrailer() {
    return this.#record('RunTrailer', decodeRunTrailer);
  }

  /** The headers of `count` events from entry `first` on, by default all. Nothing but headers is read. */
  async headers(first = 0, count = this.length - first) {
    return this.#read('fEventHeader', decodeHeader, first, count);
  }

  /** The traces of an event, by ascending pixel number. */
  async traces(entry) {
    return this.#readOne('fFADCData', decodeTraces, entry);
  }

  /** Station pixel numbers of the pixels that took part in an event, ascending. */
  async pixels(entry) {
    return this.#readOne('fPixelList', decodePixels, entry);
  }

  /** The triggered pixels of an event, with a flag for each of 100 time slices. */
  async triggers(entry) {
    return this.#readOne('fPixelData', decodeTriggers, entry);
  }

  async #record(name, decode) {
    return this.file.getKey(name, undefined, true) ? decode(await this.file.readObject(name)) : null;
  }

  async #readOne(branch, decode, entry) {
    const [event] = this.tree ? this.tree.fBranches.arr : [];
    const isThere = event?.fBranches.arr.some(({ fName }) => fName === branch); // old files lack some
    return (isThere && (await this.#read(branch, decode, entry, 1))[0]) || [];
  }

  async #read(branch, decode, first, count) {
    if (!(first >= 0 && count >= 0 && first + count <= this.length))
      throw new RangeError(`${this.file.fFileName}: entries ${first} to ${first + count - 1} of ${this.length}`);
    if (count === 0) return [];
    const collector = new Collector(branch, decode);
    await treeProcess(this.tree, collector, { firstentry: first, numentries: count });
    if (collector.error) throw collector.error;
    if (collector.values.length !== count) {
      const entry = first + collector.values.length;
      throw new Error(`${this.file.fFileName}: entry ${entry} of ${branch} can't be read`);
    }
    return collector.values;
  }
}

/**
 * Opens a station file.
 * @param source a path (Node.js), a URL, a File of the browser, or an ArrayBuffer with all of a file
 */
export async function open(source) {
  const isPath = typeof process === 'object' && typeof source === 'string' && !/^[a-z]+:\/\//.test(source);
  const file = await openFile(isPath ? `file://${source}` : source);
  if (!file) throw new Error(`${source} can't be opened, or is no ROOT file`);
  if (!kRecords.some((name) => file.getKey(name, undefined, true)))
    throw new Error(`${file.fFileName} is no station file, or was cut short or never closed: it has none of ${kRecords.join(', ')}`);
  const tree = file.getKey('StnEventTree', undefined, true) ? await file.readObject('StnEventTree') : null;
  return new Run(file, tree);
}
