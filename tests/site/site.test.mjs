// SPDX-License-Identifier: BSD-3-Clause
// The reference pages as a reader has them: opened from the disk, in a browser.
import assert from 'node:assert/strict';
import { execFile, execFileSync } from 'node:child_process';
import { copyFileSync, existsSync, mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { cpus, tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { promisify } from 'node:util';
import { readDeclarations, readRecipes } from './declarations.mjs';

const { SITE: site, SOURCE: source, MODULES: modules, CHROMIUM: executablePath, VHRENDER: vhrender } = process.env;
const { chromium } = createRequire(join(modules, 'package.json'))('playwright-core');
const urlOf = page => pathToFileURL(join(site, page)).href;
const files = readdirSync(site).filter(name => name.endsWith('.html'));
const shaders = readDeclarations(join(source, 'declarations/vhl.mi'));
const recipes = readRecipes(join(source, 'declarations/recipes.mi'));
/** What has a page of its own, and the folder of its scene. */
const subjects = Object.entries({ shaders, recipes }).flatMap(([folder, all]) => all.map(it => ({ ...it, folder })));

const browser = await chromium.launch({ executablePath, args: ['--disable-gpu'] });
after(() => browser.close());

/** Runs with a page of its own; whatever the page complains about fails. */
const withPage = async (options, use) => {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
  const page = await context.newPage();
  const complaints = [];
  page.on('console', message => { if (message.type() !== 'log') complaints.push(message.text()); });
  page.on('pageerror', error => complaints.push(error.message));
  page.on('requestfailed', request => {
    const why = request.failure().errorText;
    const wasLeft = why === 'net::ERR_ABORTED'; // for the next page, meanwhile
    if (!wasLeft) complaints.push(`${why}: ${request.url()}`);
  });
  page.on('request', request => {
    if (!request.url().startsWith(urlOf(''))) complaints.push(`foreign: ${request.url()}`);
  });
  try {
    await use(page);
    assert.deepEqual(complaints, []);
  } finally {
    await context.close();
  }
};
const open = (name, use, options = {}) => withPage(options, async page => {
  await page.goto(urlOf(name));
  await use(page);
});

/** What the tests want to know of a page; runs in the browser. */
const survey = () => {
  const all = (selector, read) => [...document.querySelectorAll(selector)].map(read);
  const words = row => [...row.cells].slice(0, -1).map(cell => cell.textContent);
  const isNamed = element => (element.ariaLabel || element.textContent || element.alt || '').trim() !== '';
  return {
    title: document.title,
    description: document.querySelector('meta[name=description]').content,
    text: document.body.innerText,
    headings: all('h1, h2, h3', heading => Number(heading.tagName[1])),
    ids: all('[id]', element => element.id),
    links: all('a[href]', link => link.href),
    pictures: all('img', ({ src, attributes: { alt, width } }) => [src, alt?.value, width?.value]),
    nameless: all('a[href], button, nav, input', isNamed).filter(named => !named).length,
    mains: all('main', main => main.id),
    parameters: all('.parameters tbody tr', words),
    members: all('.members tbody tr', words),
    code: all('.copyable code', code => code.textContent),
    whole: document.getElementById('whole')?.textContent,
    sections: all('.contents a', link => link.textContent),
    lists: Object.fromEntries(all('main h3:has(+ .names)', title =>
      [title.textContent, [...title.nextElementSibling.querySelectorAll('a')].map(link => link.textContent)])),
    cards: all('.cards h3 a', link => [link.closest('section')?.querySelector('h2').textContent, link.textContent]),
  };
};

/** Every page's survey by its file name, from a few browser pages at once. */
const surveys = new Map();
const left = [...files];
await Promise.all(Array.from({ length: 2 }, () => withPage({}, async page => {
  for (let name = left.pop(); name; name = left.pop()) {
    await page.goto(urlOf(name));
    surveys.set(name, await page.evaluate(survey));
  }
})));

test('there is a page for every shader and recipe that is declared', () => {
  assert.ok(shaders.length > 0);
  const declared = readFileSync(join(source, 'declarations/recipes.mi'), 'utf8').match(/^declare phenomenon$/gm);
  assert.equal(recipes.length, declared.length);
  const pages = files.filter(name => name.startsWith('vh')).sort();
  assert.deepEqual(pages, subjects.map(({ name }) => `${name}.html`).sort());
});

test('parameters and members are those of the declarations', () => {
  for (const { name, parameters, members = [] } of subjects) {
    const page = surveys.get(`${name}.html`);
    assert.deepEqual(page.parameters, parameters, name);
    assert.deepEqual(page.members, members, name);
  }
});

test('a page shows its declaration, version and result, and its scene as it is', () => {
  for (const { name, version, result, text, folder } of subjects) {
    const page = surveys.get(`${name}.html`);
    assert.ok(page.code.at(-1).trimEnd().endsWith(text), name);
    assert.match(page.text, new RegExp(`\\b${result}\\s+version ${version}\\n`), name);
    assert.equal(page.code[0], readFileSync(join(source, 'examples', folder, `${name}.mi`), 'utf8'));
    assert.equal(page.whole, readFileSync(join(site, 'scenes', `${name}.mi`), 'utf8'));
  }
});

test('no page lacks a picture, a scene or a section', () => {
  const expected = {
    shaders: ['Parameters', 'Result', 'Evaluation', 'Edge cases', 'Messages', 'Example', 'Declaration', 'See also'],
    recipes: ['Parameters', 'Result', 'Formula', 'Network', 'Edge cases', 'Example', 'Declaration', 'See also'],
  };
  for (const { name, folder } of subjects) {
    const { sections, pictures } = surveys.get(`${name}.html`);
    assert.deepEqual(sections.filter(title => title !== 'Notes'), expected[folder], name);
    assert.ok(pictures.some(([source]) => source === urlOf(`pictures/${name}.png`)), name);
  }
});

test('recipes and what they are made of lead to each other', () => {
  for (const { name, uses } of recipes)
    assert.deepEqual(surveys.get(`${name}.html`).lists['Made of'], uses, name);
  for (const { name } of subjects) {
    const users = recipes.filter(({ uses }) => uses.includes(name)).map(recipe => recipe.name);
    assert.deepEqual(surveys.get(`${name}.html`).lists['Used by recipes'] ?? [], users, name);
  }
});

test('all recipes are listed by group, as they are declared', () => {
  assert.deepEqual(surveys.get('recipes.html').cards, recipes.map(({ group, name }) => [group, name]));
});

test('every link leads to a page, and to a place on it', () => {
  for (const [name, { links }] of surveys)
    for (const link of links) {
      const url = new URL(link);
      const target = fileURLToPath(url.href.replace(/#.*/, '')).slice(site.length + 1);
      assert.ok(existsSync(join(site, target)), `${name}: ${link}`);
      if (url.hash) assert.ok(surveys.get(target).ids.includes(url.hash.slice(1)), `${name}: ${link}`);
    }
});

test('every page can be reached from the start', () => {
  const reached = new Set(['index.html']);
  for (const name of reached)
    for (const link of surveys.get(name).links)
      if (link.includes('.html')) reached.add(new URL(link).pathname.split('/').at(-1));
  assert.deepEqual([...reached].sort(), files.sort());
});

const passThrough = all => {
  const follow = (relation, name) => {
    const link = new RegExp(`rel="${relation}" href="(\\w+)\\.html"`);
    return link.exec(readFileSync(join(site, `${name}.html`), 'utf8'))?.[1];
  };
  const start = all.map(({ name }) => name).filter(name => !follow('prev', name));
  assert.equal(start.length, 1);
  const passed = [];
  for (let name = start[0]; name; name = follow('next', name)) {
    if (passed.length) assert.equal(follow('prev', name), passed.at(-1));
    passed.push(name);
  }
  assert.deepEqual(passed.sort(), all.map(({ name }) => name).sort());
};
test('previous and next pass through all shaders and back', () => passThrough(shaders));
test('previous and next pass through all recipes and back', () => passThrough(recipes));

test('every picture is there and has a text and a size', () => {
  for (const [name, { pictures }] of surveys)
    for (const [source, alt, width] of pictures) {
      assert.ok(existsSync(fileURLToPath(source)), `${name}: ${source}`);
      assert.notEqual(alt, undefined, `${name}: ${source}`);
      assert.ok(Number(width) > 0, `${name}: ${source}`);
    }
});

test('titles, landmarks, headings and names are in order', () => {
  const titles = new Set();
  for (const [name, page] of surveys) {
    titles.add(page.title);
    assert.ok(page.description, name);
    assert.deepEqual(page.mains, ['content'], name);
    assert.equal(page.headings.filter(level => level === 1).length, 1, name);
    page.headings.forEach((level, i) => assert.ok(level <= (page.headings[i - 1] ?? 0) + 1, name));
    assert.equal(new Set(page.ids).size, page.ids.length, `${name}: ids`);
    assert.equal(page.nameless, 0, `${name}: nameless`);
    assert.doesNotMatch(page.text, /undefined|\{\}|&(amp|lt|gt|quot);/, name);
  }
  assert.equal(titles.size, files.length);
});

/** The names found for a text, best first. */
const find = async (page, text) => {
  await page.fill('#query', text);
  return page.locator('#found a code').allTextContents();
};

test('search finds by name, by words of a description, by parameter', () => open('index.html', async page => {
  assert.equal((await find(page, 'vhMixColor_v2'))[0], 'vhMixColor_v2');
  assert.equal((await find(page, 'mixcolor'))[0], 'vhMixColor_v2');
  assert.equal((await find(page, 'color mix'))[0], 'vhMixColor_v2');
  assert.equal((await find(page, 'AND'))[0].slice(0, 5), 'vhAnd');
  assert.equal((await find(page, 'normal'))[0], 'vhStateNormal_v1'); // before vhNormalizeVector_v1
  assert.equal((await find(page, 'color suba'))[0].slice(0, 11), 'vhSubAColor');
  assert.ok((await find(page, 'penumbra particles')).length === 0);
  assert.deepEqual((await find(page, 'dot product')).sort(), ['vhColor2Scalar_v1', 'vhVector2Scalar_v1']);
  assert.ok((await find(page, 'panoramic image')).includes('vhEnvironmentPanoramic_v1'));

  const withParameter = shaders.filter(({ parameters }) => parameters.some(([it]) => it === 'defaultColor'));
  const found = await find(page, 'defaultcolor');
  for (const { name } of withParameter) assert.ok(found.includes(name), name);
  await page.click('#found a');
  await page.waitForURL('**/vh*.html#p-defaultColor');
  assert.equal(await page.textContent('tr:target th'), 'defaultColor');
}));

test('recipes are found by name, purpose and parameter, and marked', () => open('index.html', async page => {
  const marks = () => page.locator('#found a:has(b)').evaluateAll(links =>
    links.map(link => [link.querySelector('code').textContent, link.querySelector('b').textContent]));
  assert.equal((await find(page, 'smoothstep'))[0], 'vhrSmoothstepScalar_v1');
  assert.deepEqual(await marks(), [['vhrSmoothstepScalar_v1', 'recipe']]);
  assert.deepEqual(await find(page, 'old photographs'), ['vhrSepiaColor_v1']);
  assert.deepEqual((await find(page, 'linewidth')).sort(), ['vhrSafeFrameColor_v1', 'vhrWipeColor_v1']);
  await page.click('#found a');
  await page.waitForURL('**/vhr*.html#p-lineWidth');
  await find(page, 'recipe patterns');
  const patterns = recipes.filter(({ group }) => group === 'Patterns').map(({ name }) => [name, 'recipe']);
  assert.deepEqual((await marks()).sort(), patterns.sort());
  const found = await find(page, 'add color');
  assert.equal((await marks()).length, found.filter(name => name.startsWith('vhr')).length);

  for (const { name, purpose } of recipes) {
    const texts = (await find(page, purpose), await page.locator('#found a').allTextContents());
    assert.ok(texts.some(text => text.startsWith(name) && text.endsWith(purpose)), name);
  }
}));

test('every shader and recipe is the first that its name finds', () => open('index.html', async page => {
  const firsts = await page.evaluate(names => names.map(name => {
    const input = document.getElementById('query');
    input.value = name;
    input.dispatchEvent(new Event('input'));
    return document.querySelector('#found code').textContent;
  }), subjects.map(({ name }) => name));
  assert.deepEqual(firsts, subjects.map(({ name }) => name));
}));

test('colour and color find the same', () => open('index.html', async page => {
  const found = await find(page, 'colour alpha');
  assert.ok(found.length > 0);
  assert.deepEqual(await find(page, 'color alpha'), found);
}));

test('what is typed stays text', () => open('index.html', async page => {
  assert.deepEqual(await find(page, '<img src=x onerror=alert(1)>'), []);
  assert.match(await page.textContent('#found'), /Nothing found/);
  assert.equal(await page.textContent('#count'), '0 found');
  assert.deepEqual(await find(page, '   '), []);
  assert.ok(await page.isHidden('#found'));
}));

test('search by keyboard alone', () => open('vhAddColor_v2.html', async page => {
  const active = () => page.evaluate(() => {
    const input = document.getElementById('query');
    const chosen = document.querySelector('#found [aria-selected=true]');
    const isTold = input.getAttribute('aria-activedescendant') === (chosen?.id ?? null);
    return [input.getAttribute('aria-expanded'), isTold, chosen?.querySelector('code').textContent];
  });
  await page.keyboard.press('/');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'query');
  assert.equal(await page.inputValue('#query'), '');
  await page.keyboard.type('lens');
  const found = await page.locator('#found a code').allTextContents();
  assert.ok(found.length >= 3);
  assert.deepEqual(await active(), ['true', true, found[0]]);
  await page.keyboard.press('ArrowDown');
  assert.deepEqual(await active(), ['true', true, found[1]]);
  await page.keyboard.press('ArrowUp');
  await page.keyboard.press('ArrowUp'); // around
  assert.deepEqual(await active(), ['true', true, found.at(-1)]);
  await page.keyboard.press('Escape');
  assert.ok(await page.isHidden('#found'));
  assert.deepEqual(await active(), ['false', true, undefined]);
  await page.keyboard.press('ArrowDown');
  assert.deepEqual(await active(), ['true', true, found[0]]);
  await page.keyboard.press('Enter');
  await page.waitForURL(`**/${found[0]}.html*`);
}));

test('in the search a slash is a letter, and Escape leaves', () => open('index.html', async page => {
  await page.keyboard.press('/');
  await page.keyboard.type('a/b');
  assert.equal(await page.inputValue('#query'), 'a/b');
  await page.keyboard.press('Escape');
  await page.keyboard.press('Escape');
  assert.notEqual(await page.evaluate(() => document.activeElement.id), 'query');
  await page.fill('#query', 'add');
  assert.ok(await page.isVisible('#found'));
  await page.mouse.click(400, 800);
  assert.ok(await page.isHidden('#found'));
}));

test('the first Tab offers to skip, and the focus is seen', () => open('vhAddColor_v2.html', async page => {
  await page.keyboard.press('Tab');
  const focused = () => page.evaluate(() => {
    const { top, left } = document.activeElement.getBoundingClientRect();
    const outline = getComputedStyle(document.activeElement).outlineStyle;
    return { text: document.activeElement.textContent, top, left, outline };
  });
  const first = await focused();
  assert.equal(first.text, 'Skip to content');
  assert.ok(first.top >= 0 && first.left >= 0);
  for (let i = 0; i < 12; ++i) {
    assert.notEqual((await focused()).outline, 'none', (await focused()).text);
    await page.keyboard.press('Tab');
  }
  await page.focus('.skip');
  await page.keyboard.press('Enter');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'content');
}));

const mayCopy = { permissions: ['clipboard-read', 'clipboard-write'] };
const copy = async (page, index) => {
  const button = page.locator('.copyable button').nth(index);
  await button.click();
  await button.filter({ hasText: 'Copied' }).waitFor();
  return page.evaluate(() => navigator.clipboard.readText());
};

test('whole scenes and declarations can be copied', () => open('vhSwitchColor_v4.html', async page => {
  assert.equal(await page.locator('.copyable button').count(), 2);
  assert.equal(await copy(page, 0), surveys.get('vhSwitchColor_v4.html').whole);
  assert.equal(await copy(page, 1), surveys.get('vhSwitchColor_v4.html').code[1]);
}, mayCopy));

test('what is copied renders in an empty folder, beside the pictures that the page hands out', async () => {
  for (const [name, textures, picture] of [
    ['vhSwitchColor_v4', [], 'vhSwitchColor_v4.png'],
    ['vhMixerVector4_v1', ['still-life.png'], 'vhMixerVector4_v1.png'],
    ['vhrRimColor_v1', [], 'recipe.png'],
    ['vhrSepiaColor_v1', ['photo.png'], 'recipe.png'],
  ])
    await open(`${name}.html`, async page => {
      const folder = mkdtempSync(join(tmpdir(), 'vhl-copied-'));
      try {
        const offered = page.locator('a[download]');
        assert.deepEqual(await offered.allTextContents(), textures);
        for (const link of await offered.all())
          copyFileSync(fileURLToPath(await link.evaluate(it => it.href)), join(folder, await link.textContent()));
        writeFileSync(join(folder, 'copied.mi'), await copy(page, 0));
        const options = { cwd: folder, encoding: 'utf8', stdio: 'pipe' };
        assert.equal(execFileSync('sh', ['-c', '"$0" copied.mi 2>&1', vhrender], options), '');
        assert.ok(existsSync(join(folder, picture)));
      } finally {
        rmSync(folder, { recursive: true });
      }
    }, mayCopy);
});

test('every whole scene can be read without what it was pasted from', () => {
  const left = [...subjects];
  const read = async () => {
    while (left.length) {
      const { name } = left.pop();
      const scene = join(site, 'scenes', `${name}.mi`);
      assert.doesNotMatch(readFileSync(scene, 'utf8'), /^\$include "/m, name);
      const { stdout, stderr } = await promisify(execFile)(vhrender, ['-check', scene]);
      assert.match(stdout + stderr, /^(frame \d+: .* can be rendered\n)+$/, name);
    }
  };
  return Promise.all(Array.from({ length: cpus().length }, read));
});

test('the theme is the system\'s, until a switch that is remembered', () => open('index.html', async page => {
  const paper = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const pressed = () => page.getAttribute('#theme', 'aria-pressed');
  const light = await paper();
  assert.equal(await pressed(), 'false');
  await page.emulateMedia({ colorScheme: 'dark' });
  const dark = await paper();
  assert.notEqual(dark, light);
  assert.equal(await pressed(), 'true');
  await page.emulateMedia({ colorScheme: 'light' });
  await page.click('#theme');
  assert.deepEqual([await paper(), await pressed()], [dark, 'true']);
  await page.goto(urlOf('arithmetic.html'));
  assert.deepEqual([await paper(), await pressed()], [dark, 'true']);
  await page.click('#theme');
  assert.deepEqual([await paper(), await pressed()], [light, 'false']);
  await page.reload();
  assert.equal(await paper(), light);
}, { colorScheme: 'light' }));

/** Texts whose contrast with what is behind them is below 4.5 to 1; runs in the browser. */
const faint = () => {
  const read = color => color.match(/[\d.]+/g).map(Number);
  const luminance = color => {
    const linear = v => (v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4);
    const [r, g, b] = read(color).map(v => linear(v / 255));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const behind = element => {
    for (let at = element; at; at = at.parentElement) {
      const color = getComputedStyle(at).backgroundColor;
      if (read(color)[3] !== 0) return color;
    }
    throw new Error('nothing behind the text');
  };
  const contrast = (a, b) => {
    const [dark, bright] = [luminance(a), luminance(b)].sort((x, y) => x - y);
    return (bright + 0.05) / (dark + 0.05);
  };
  const colors = [];
  const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (texts.nextNode()) {
    const element = texts.currentNode.parentElement;
    if (element.checkVisibility())
      colors.push([texts.currentNode.data, getComputedStyle(element).color, behind(element)]);
  }
  const query = document.getElementById('query');
  colors.push(['placeholder', getComputedStyle(query, '::placeholder').color, behind(query)]);
  return colors.filter(([text, ink, paper]) => text.trim() && contrast(ink, paper) < 4.5);
};

for (const colorScheme of ['light', 'dark'])
  test(`every text is readable, ${colorScheme}`, () => withPage({ colorScheme }, async page => {
    for (const name of ['index', 'arithmetic', 'vhSwitchColor_v4', 'vhColor2Scalars_v1', 'recipes', 'vhrGainScalar_v1']) {
      await page.goto(urlOf(`${name}.html`));
      await page.fill('#query', 'color mi');
      assert.deepEqual(await page.evaluate(faint), [], name);
      await page.hover('#theme');
      assert.deepEqual(await page.evaluate(faint), [], name);
    }
  }));

const telephone = { viewport: { width: 360, height: 740 } };
test('nothing is wider than a telephone', () => withPage(telephone, async page => {
  const widest = ['vhSwitchColor_v4', 'vhMixerColor16_v1', 'vhStateRefractionLevelScalar_v1', 'vhrSafeFrameColor_v1',
    'vhrPatternMatteColor_v1'];
  for (const name of ['index', 'state', 'recipes', ...widest]) {
    await page.goto(urlOf(`${name}.html`));
    await page.fill('#query', 'color');
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360, name);
    const { x, width } = await page.locator('#found').boundingBox();
    assert.ok(x >= 0 && width >= 320 && x + width <= 360, name);
  }
}));

test('counts stand beside what they count, however wide a scroll bar is', () => open('recipes.html', async page => {
  for (const bar of [0, 15, 40]) {
    await page.addStyleTag({ content: `.groups { padding-right: ${12 + bar}px }` });
    const astray = await page.locator('.groups a:has(small)').evaluateAll(links => links.filter(link => {
      const [all, count] = [link, link.querySelector('small')].map(element => element.getBoundingClientRect());
      const name = document.createRange();
      name.selectNode(link.firstChild);
      return count.left < name.getBoundingClientRect().right || count.bottom > all.bottom || count.right > all.right;
    }).map(link => link.textContent));
    assert.deepEqual(astray, [], `a bar of ${bar}`);
  }
}, { viewport: { width: 1200, height: 700 } }));

test('without scripts everything but the search is there', () => open('vhAddColor_v2.html', async page => {
  assert.ok(await page.isVisible('.parameters'));
  for (const hidden of ['#search', '#theme', '.copyable button >> nth=0'])
    assert.ok(await page.isHidden(hidden), hidden);
}, { javaScriptEnabled: false }));

test('on paper the page stands alone', () => open('vhAddColor_v2.html', async page => {
  await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
  assert.ok(await page.isVisible('.parameters'));
  for (const hidden of ['header', '.groups', '.steps']) assert.ok(await page.isHidden(hidden), hidden);
  const paper = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  assert.equal(paper, 'rgb(255, 255, 255)');
}));

test('what is installed for this test comes from wherever the machine takes its packages', () => {
  assert.doesNotMatch(readFileSync(new URL('package-lock.json', import.meta.url), 'utf8'), /:\/\//);
});
