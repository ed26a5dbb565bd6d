// The pages that stn-display and stn-report make, in a browser, against the library's values of the same run.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { access, copyFile, mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test, { after, before, describe } from 'node:test';
import { fileURLToPath } from 'node:url';

import { Page, chromium } from './browser.mjs';

const golden = fileURLToPath(new URL('../../../test/golden/', import.meta.url));
const library = JSON.parse(await readFile(join(golden, 'run.json'), 'utf8'));
const skip = await access(chromium).then(() => false, () => `no ${chromium}`);
const kPhone = { width: 390, height: 844, touch: true };

let folder, page;
const file = (name) => join(folder, name);
const make = (program, ...args) => execFileSync(join(process.env.STN_BIN, program), args);
const text = (selector) => page.ask(`document.querySelector(${JSON.stringify(selector)}).textContent`);

// What the library says of a pixel, in the words of the page.
const traceOf = (event, number) => library.events[event].traces.find((trace) => trace.station_pixel === number).words;
function ranges(bins) {
  const found = [];
  for (const bin of bins) {
    if (found.at(-1)?.[1] === bin - 1) found.at(-1)[1] = bin;
    else found.push([bin, bin]);
  }
  return found;
}
const triggersOf = (words) => ranges(words.map((word, bin) => (word & 0x8000 ? bin : -1)).filter((bin) => bin >= 0));

before(async () => {
  if (skip) return;
  folder = await mkdtemp(join(tmpdir(), 'stn-pages-'));
  make('stn-display', join(golden, 'run.root'), '--event', '1', '--count', '3', '-o', file('display.html'));
  make('stn-report', join(golden, 'run.root'), '-o', file('report.html'));
  page = await Page.open();
}, { timeout: 60000 });

after(async () => {
  await page?.close();
  if (folder) await rm(folder, { recursive: true });
});

describe('a page of events', { skip }, () => {
  const visit = (options) => page.visit(file('display.html'), options);

  for (const number of [1993, 2045]) {
    test(`a click on pixel ${number} shows its trace`, async () => {
      await visit();
      await page.click(`[data-pixel="${number}"]`);
      const words = traceOf(1, number);
      assert.match(await text('#facts'), new RegExp(`^Station pixel${number}Signal`));
      assert.deepEqual(await page.ask('Array.from(plotted.samples)'), words.map((word) => word & 0xFFF));
      const marks = "Array.from(document.querySelectorAll('.trigger'), ({ dataset }) => [Number(dataset.first), Number(dataset.last)])";
      assert.deepEqual(await page.ask(marks), triggersOf(words));
      assert.deepEqual(await page.ask('state.pixel.slices[0][0]'),
                       library.events[1].pixel_data[4].first.find(([column, row]) => (column - 1) * 24 + row === number - 1920)[2]);
    });
  }

  test('the pointer reads samples off the trace', async () => {
    await visit();
    await page.click('[data-pixel="1994"]');
    const { y } = await page.middle('.plot');
    const x = await page.ask('plotted.plot.getBoundingClientRect().left + plotted.x(254.5)');
    await page.move(x, y);
    assert.equal(await text('#readout'), `bin 254 (25.4 µs): ${traceOf(1, 1994)[254] & 0xFFF} counts`);
  });

  test('the line goes through the samples', async () => {
    await visit();
    await page.click('[data-pixel="1994"]');
    const heights = await page.ask("document.querySelector('.line').getAttribute('d').match(/[\\d.]+(?=H)/g).map(Number)");
    const drawn = await page.ask('Array.from(plotted.samples, (sample) => Number(plotted.y(sample).toFixed(1)))');
    assert.equal(heights.length, 1000);
    assert.deepEqual(heights, drawn);
  });

  test('a part of the trace is that at the trigger', async () => {
    await visit();
    await page.click('[data-pixel="1994"]');
    await page.click('input[value=trigger]');
    const [first, last] = [triggersOf(traceOf(1, 1994))[0][0], triggersOf(traceOf(1, 1994)).at(-1)[1]];
    const [begin, end] = await page.ask('[plotted.begin, plotted.end]');
    assert.ok(begin > 0 && begin < first && end > last && end < 1000, `${begin} to ${end}`);
  });

  test('every pixel of the event is in its camera', async () => {
    await visit();
    const drawn = await page.ask("Array.from(document.querySelectorAll('.pixel'), ({ dataset }) => Number(dataset.pixel))");
    assert.deepEqual(drawn.sort((a, b) => a - b), library.events[1].pixels);
  });

  test('next and previous go through the events', async () => {
    await visit();
    const seen = [];
    for (const button of ['#next', '#next', '#previous', '#previous']) {
      await page.click(button);
      seen.push([await text('#name'), ...(await page.ask("['previous', 'next'].map((id) => find(id).disabled)"))]);
    }
    assert.deepEqual(seen, [['Event 3', false, true], ['Event 3', false, true], ['Event 2', false, false], ['Event 1', true, false]]);
  });

  test('the header stands there in words', async () => {
    await visit();
    assert.equal(await text('#class'), 'Muon');
    assert.equal(await text('#about'), 'Run 1 of station 3, 2024-05-17 16:53:06.286015029 UTC, type Physics');
    assert.match(await text('#header'), /Time correctionAveraged; 10 MHz cycle of 99\.99\d+ ns/);
    assert.match(await text('#mirrors'), /5MuonEventinternal20/);
  });

  test('colours are those of time or of signal, in three palettes', async () => {
    await visit();
    const colours = "Array.from(document.querySelectorAll('.pixel'), (pixel) => pixel.getAttribute('fill')).join()";
    const seen = [await page.ask(colours)];
    await page.click('input[value=signal]');
    seen.push(await page.ask(colours));
    assert.match(await text('#scale-title'), /^Signal \[FADC counts\]/);
    for (const palette of ['cividis', 'grey']) {
      await page.ask(`find('palette').value = '${palette}'; find('palette').dispatchEvent(new Event('change'))`);
      seen.push(await page.ask(colours));
    }
    assert.equal(new Set(seen).size, 4);
  });

  test('colours leave out what lies far outside, if there are enough others', async () => {
    await visit();
    assert.deepEqual(await page.ask('usualRange([0, 40, 41, 42, 43, 44, 45, 200])'), [40, 45]);
    assert.deepEqual(await page.ask('usualRange([0, 40, 41, 42, 43, 44, 200])'), [0, 200]);
    assert.deepEqual(await page.ask('usualRange([7])'), [6.5, 7.5]);
  });

  test('pixels beyond the colours are counted', async () => {
    await visit();
    assert.equal(await text('#scale-note'), '2 pixels beyond the ends of the bar');
    await page.ask('event().pixels[0].trace.time = 1e9; drawCameras()');
    assert.equal(await text('#scale-note'), '3 pixels beyond the ends of the bar');
  });

  test('pixels without a value are grey and counted', async () => {
    await visit();
    await page.ask('event().pixels[0].trace.time = null; event().pixels[1].trace = null; drawCameras()');
    assert.match(await text('#scale-note'), /2 pixels in grey: no trigger bin$/);
    assert.equal(await page.ask("document.querySelector('.pixel').getAttribute('fill')"), 'var(--unknown)');
    await page.click('[data-pixel="1994"]');
    assert.equal(await text('#trace'), 'There is no trace of this pixel.');
  });

  test('the brightest pixel has the last colour of the palette', async () => {
    await visit();
    await page.click('input[value=signal]');
    const brightest = "document.querySelector(`[data-pixel=\"${event().pixels.reduce((a, b) => a.trace.signal > b.trace.signal ? a : b).number}\"]`)";
    assert.equal(await page.ask(`${brightest}.getAttribute('fill')`), 'rgb(253,231,37)');
  });

  test('the keyboard reaches cameras, pixels and events', async () => {
    await visit();
    const isInCamera = 'document.activeElement.dataset.mirror';
    for (let i = 0; i < 12 && !(await page.ask(isInCamera)); ++i) await page.press('Tab');
    assert.equal(await page.ask(isInCamera), '5');
    assert.notEqual(await page.ask('getComputedStyle(document.activeElement).outlineStyle'), 'none');
    await page.ask("choosePixel(event().pixels.find(({ number }) => number === 2019))");
    const chosen = [];
    for (const arrow of ['ArrowUp', 'ArrowDown', 'ArrowRight', 'ArrowLeft']) {
      await page.press(arrow);
      chosen.push(await page.ask('[state.pixel.column, state.pixel.row]'));
    }
    assert.deepEqual(chosen, [[5, 4], [5, 3], [5, 2], [4, 2]]);
    assert.equal(await text('#name'), 'Event 2');
    await page.press('n');
    assert.equal(await text('#name'), 'Event 3');
    await page.ask('document.activeElement.blur()');
    await page.press('ArrowLeft');
    assert.equal(await text('#name'), 'Event 2');
    await page.press('s');
    assert.equal(await page.ask("choice('colour')"), 'signal');
  });

  test('a finger beside a pixel takes the nearest', async () => {
    await visit(kPhone);
    await page.click('[data-pixel="1995"]');
    await page.tap('[data-pixel="1993"]', -15);
    assert.equal(await page.ask('state.pixel.number'), 1993);
  });

  test('buttons are large enough for a finger', async () => {
    await visit(kPhone);
    const heights = await page.ask("Array.from(document.querySelectorAll('button, select, .choice'), (node) => node.getBoundingClientRect().height)");
    assert.ok(Math.min(...heights) >= 44, heights.join());
  });

  test('an event that could not be read says so and leaves the others', async () => {
    const whole = await readFile(file('display.html'), 'utf8');
    await writeFile(file('damaged.html'), whole.replace('"events":[', '"events":[{"entry":7,"error":"<b>torn</b>"},'));
    await page.visit(file('damaged.html'));
    for (const key of ['p', 'p']) await page.press(key);
    assert.equal(await text('#error'), '<b>torn</b>');
    assert.equal(await text('#name'), 'Entry 7');
    await page.press('n');
    assert.deepEqual([await text('#name'), await page.ask("find('error').hidden")], ['Event 1', true]);
    assert.deepEqual(page.problems, []);
  });

  test('a name of a file is text', async () => {
    const name = '<img src=x onerror=document.title=1><\uff0fscript>&amp;.root';
    await copyFile(join(golden, 'run.root'), file(name));
    make('stn-display', file(name), '-n', '1', '-o', file('named.html'));
    await page.visit(file('named.html'));
    assert.ok((await text('#footer')).includes(`events in ${file(name)}. `));
    assert.equal(await page.ask('document.title'), `Event 0 of ${file(name)}`);
    assert.equal(await page.ask("document.querySelectorAll('img').length"), 0);
    assert.deepEqual(page.problems, []);
  });
});

describe('a report', { skip }, () => {
  const visit = (options) => page.visit(file('report.html'), options);

  test('says in words what the run was', async () => {
    await visit();
    assert.equal(await text('#name'), 'Run 1 of station 3');
    assert.equal(await text('#words'), '5 events in 7.69 s, 0.65 per second. By class: 60.0 % Muon, 20.0 % Shower Candidate and 20.0 % Shower. '
      + 'Mirrors 2 and 5 delivered data, mirror 5 most often (60.0 % of the events). 2 events had a T3, of which 0 were rejected.');
  });

  test('shows each pixel that was in an event', async () => {
    await visit();
    const numbers = [...new Set(library.events.flatMap(({ pixels }) => pixels))].sort((a, b) => a - b);
    const drawn = await page.ask("Array.from(document.querySelectorAll('.pixel'), ({ dataset }) => Number(dataset.pixel))");
    assert.deepEqual(drawn, numbers);
    const events = library.events.filter(({ pixels }) => pixels.includes(834)).length;
    assert.match(await text('[data-pixel="834"]'), new RegExp(`^Mirror 2, pixel 354: ${events} events?, `));
  });

  test('has the mirrors with their dead times', async () => {
    await visit();
    const rows = await page.ask("Array.from(document.querySelectorAll('#mirrors tbody tr'), (row) => Array.from(row.cells, (cell) => cell.textContent))");
    const counters = library.events.map(({ header }) => header).filter(({ data_bits: bits }) => bits & 16).map(({ dead_time: dead }) => dead[4]);
    assert.deepEqual(rows[4].slice(0, 5), ['5', '3 (60.0 %)', '100 %', '3', ((counters.at(-1) - counters[0]) * 1e-7).toFixed(2)]);
  });

  test('the bars of the rate are all events', async () => {
    await visit();
    const bars = await page.ask("Array.from(document.querySelectorAll('#rate .bar title'), (title) => parseInt(title.textContent))");
    assert.equal(bars.reduce((a, b) => a + b), 5);
  });
});

for (const name of ['display', 'report']) {
  describe(`the page ${name}`, { skip }, () => {
    for (const [kind, options] of [['a desktop', {}], ['a phone', kPhone], ['a small phone', { ...kPhone, width: 320 }], ['a dark room', { dark: true }]]) {
      test(`on ${kind} has no error, asks for nothing and is no broader than the window`, async () => {
        await page.visit(file(`${name}.html`), options);
        assert.deepEqual(page.problems, []);
        assert.equal(await page.ask('document.documentElement.scrollWidth'), options.width ?? 1280);
      });
    }

    test('is dark where the user wants it dark', async () => {
      const light = [];
      for (const dark of [false, true]) {
        await page.visit(file(`${name}.html`), { dark });
        light.push(await page.ask("parseInt(getComputedStyle(document.body).backgroundColor.match(/\\d+/)[0])"));
      }
      assert.ok(light[0] > 200 && light[1] < 50, light.join());
    });
  });
}
