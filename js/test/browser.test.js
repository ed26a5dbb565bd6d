// The same in a browser: a page reads a run and sends what it found.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { access, mkdtemp, readFile, rm } from 'node:fs/promises';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join } from 'node:path';
import test, { before } from 'node:test';
import { fileURLToPath } from 'node:url';

import { libraryValues } from './values.js';

const project = fileURLToPath(new URL('../..', import.meta.url));
const chromium = process.env.STN_CHROMIUM ?? '/usr/bin/chromium';
const skip = await access(chromium).then(() => false, () => `no ${chromium}`);
const kTypes = { '.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript' };

/** Serves the project's files, and gives what the page posts. */
function serve() {
  const server = createServer();
  const result = new Promise((resolve) => {
    server.on('request', async (request, response) => {
      if (request.method === 'POST') {
        let text = '';
        for await (const chunk of request) text += chunk;
        response.end();
        return resolve(JSON.parse(text));
      }
      const file = join(project, new URL(request.url, 'http://localhost').pathname);
      const content = await readFile(file).catch(() => null);
      response.writeHead(content ? 200 : 404, { 'Content-Type': kTypes[extname(file)] ?? 'application/octet-stream' });
      return response.end(request.method === 'HEAD' ? undefined : content);
    });
  });
  return new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => resolve({ server, result, port: server.address().port }));
  });
}

async function visit(url, profile) {
  const options = ['--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--no-first-run'];
  const browser = spawn(chromium, [...options, `--user-data-dir=${profile}`, url], { stdio: 'ignore' });
  const ended = new Promise((resolve) => browser.on('exit', resolve));
  return { ended, end: () => { browser.kill(); return ended; } };
}

let found, expected;

before(async () => {
  if (skip) return;
  expected = libraryValues(await readFile(join(project, 'test/golden/run.json'), 'utf8'));
  const profile = await mkdtemp(join(tmpdir(), 'stnevent-chromium-'));
  const { server, result, port } = await serve();
  const browser = await visit(`http://127.0.0.1:${port}/js/test/browser.html`, profile);
  found = await Promise.race([result, browser.ended.then((code) => ({ error: `${chromium} ended with ${code}` }))]);
  await browser.end();
  server.closeAllConnections();
  server.close();
  await rm(profile, { recursive: true, force: true, maxRetries: 5 });
}, { timeout: 120000 });

for (const way of ['byUrl', 'byBytes', 'byFile']) {
  test(`a run has the values that the library gives in Chromium, ${way}`, { skip }, () => {
    assert.equal(found.error, undefined);
    assert.deepEqual(found[way], expected);
  });
}
