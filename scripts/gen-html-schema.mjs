#!/usr/bin/env node
// Generates htmldoc/schemadata.tsv, the HTML schema of the reference document: tags, their
// attributes with data types and descriptions, value sets, named colours and character
// references. The data comes from maintained npm packages, installed into a temporary folder
// outside the repository, merged with the hand-kept tables of html-schema-extra.mjs.
// Usage: node scripts/gen-html-schema.mjs
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync, readFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, dirname } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import * as extra from './html-schema-extra.mjs';

const packages = {
  '@vscode/web-custom-data': '0.6.3',
  'html-element-attributes': '3.5.0',
  'html-tag-names': '2.1.0',
  'character-entities': '2.0.2',
  'character-entities-legacy': '3.0.0',
  'color-name': '2.1.1',
  '@mdn/browser-compat-data': '8.1.9',
  'svg-element-attributes': '2.2.0',
  'svg-tag-names': '3.0.1',
  'mathml-tag-names': '4.0.0',
  'aria-attributes': '2.0.1',
};

const SOURCE = { html401: 1, current: 2, vendor: 3, svg: 4, mathml: 5, rdfa: 6, xml: 7 };
const sourceNames = { 1: 'HTML 4.01', 2: 'HTML Living Standard', 3: 'Vendor extension', 4: 'SVG', 5: 'MathML',
  6: 'RDFa 1.1', 7: 'XML' };

function install() {
  const dir = mkdtempSync(join(tmpdir(), 'zentrel-schema-'));
  writeFileSync(join(dir, 'package.json'), '{"name":"schema-gen","private":true}');
  const specs = Object.entries(packages).map(([n, v]) => `${n}@${v}`);
  execFileSync('npm', ['install', '--no-audit', '--no-fund', '--silent', '--prefix', dir, ...specs], { stdio: 'inherit' });
  return dir;
}

async function load(dir) {
  const nm = join(dir, 'node_modules');
  const json = (p) => JSON.parse(readFileSync(join(nm, p), 'utf8'));
  const esm = (p) => import(pathToFileURL(join(nm, p)).href);
  const meta = {};
  for (const name of Object.keys(packages)) {
    const pkg = json(`${name}/package.json`);
    meta[name] = { version: pkg.version, license: pkg.license };
  }
  return {
    meta,
    web: json('@vscode/web-custom-data/data/browsers.html-data.json'),
    elementAttributes: (await esm('html-element-attributes/index.js')).htmlElementAttributes,
    tagNames: (await esm('html-tag-names/index.js')).htmlTagNames,
    entities: (await esm('character-entities/index.js')).characterEntities,
    legacyEntities: (await esm('character-entities-legacy/index.js')).characterEntitiesLegacy,
    colors: (await esm('color-name/index.js')).default,
    bcd: json('@mdn/browser-compat-data/data.json'),
    svgAttributes: (await esm('svg-element-attributes/index.js')).svgElementAttributes,
    svgTags: (await esm('svg-tag-names/index.js')).svgTagNames,
    mathmlTags: (await esm('mathml-tag-names/index.js')).mathmlTagNames,
    ariaAttributes: (await esm('aria-attributes/index.js')).ariaAttributes,
  };
}

// The first paragraph of a markdown description, as plain text of at most about 300 bytes.
function plain(desc) {
  if (!desc) return '';
  let s = typeof desc === 'string' ? desc : desc.value || '';
  s = s.split(/\n\s*\n/)[0];
  s = s.replace(/\[([^\]]*)\]\([^)]*\)/g, '$1').replace(/[`*]/g, '').replace(/\b_([^_]+)_\b/g, '$1').replace(/\s+/g, ' ').trim();
  if (s.length > 300) {
    const cut = s.slice(0, 300).lastIndexOf('. ');
    s = cut > 40 ? s.slice(0, cut + 1) : s.slice(0, 297) + '...';
  }
  // The text travels in the process code page: keep it to ASCII.
  return s.replace(/[\u2018\u2019]/g, "'").replace(/[\u201c\u201d]/g, '"').replace(/[\u2013\u2014]/g, '-')
    .replace(/[^\x20-\x7e]/g, '');
}

function build(d) {
  const webTags = new Map(d.web.tags.map((t) => [t.name, t]));
  const webGlobals = new Map(d.web.globalAttributes.map((a) => [a.name, a]));
  const bcdEl = d.bcd.html.elements;
  const bcdGlobal = d.bcd.html.global_attributes;
  const isCurrentBcd = (c) => c && c.__compat && !c.__compat.status.deprecated && c.__compat.status.standard_track;
  const isDeprecatedBcd = (c) => c && c.__compat && (c.__compat.status.deprecated || !c.__compat.status.standard_track);
  const h401 = new Set(extra.html401Elements);
  const h401Attr = new Set(extra.html401Attributes);

  const tagNames = new Set([...d.tagNames, ...webTags.keys(), ...Object.keys(d.elementAttributes).filter((n) => n !== '*')]);
  const tagSource = (name) => {
    if ((webTags.has(name) && !isDeprecatedBcd(bcdEl[name])) || isCurrentBcd(bcdEl[name])) return SOURCE.current;
    return h401.has(name) ? SOURCE.html401 : SOURCE.vendor;
  };
  const attrSource = (tag, name, web) => {
    const compat = tag === '*' ? bcdGlobal[name] : bcdEl[tag]?.[name];
    if ((web && !isDeprecatedBcd(compat)) || isCurrentBcd(compat) ||
        (tag === '*' && /^(aria-|on)/.test(name) && webGlobals.has(name))) return SOURCE.current;
    return (tag === '*' || h401.has(tag)) && h401Attr.has(name) ? SOURCE.html401 : SOURCE.vendor;
  };

  const sets = new Map();
  for (const vs of d.web.valueSets)
    sets.set(vs.name, vs.values.map((v) => [v.name, plain(v.description)]));
  for (const [name, values] of Object.entries(extra.valueSets)) sets.set(name, values.map((v) => [v, '']));
  const usedSets = new Set();
  const missing = [];
  // An attribute that the data sets describe on one tag only gets that text on the others.
  const anyDescription = new Map();
  for (const t of d.web.tags)
    for (const a of t.attributes) if (!anyDescription.has(a.name) && plain(a.description)) anyDescription.set(a.name, plain(a.description));

  const attrRecord = (tag, name, web) => {
    const legacyEnum = extra.enumByTag[tag]?.[name] ?? (name === 'align' || name === 'valign' ? extra.enumByTag['*'][name] : undefined);
    let type, set = '';
    const byTag = extra.typeByTag[tag]?.[name];
    if (byTag !== undefined) type = byTag;
    else if (legacyEnum) { type = extra.T.enumerated; set = legacyEnum; }
    else if (web?.valueSet === 'v' || extra.legacyFlags.includes(name)) type = extra.T.none;
    else if (web?.valueSet) { type = extra.T.enumerated; set = web.valueSet; }
    else if (/^on[a-z]+$/.test(name)) type = extra.T.script;
    else type = extra.typeByName[name] ?? extra.T.string;
    if (set) usedSets.add(set);
    const description = plain(web?.description) || extra.attrDescriptions[`${tag}.${name}`] || extra.attrDescriptions[name] ||
      anyDescription.get(name) || '';
    if (!description) missing.push(`${tag}.${name}`);
    const open = extra.openValueSets.includes(set) ? '~' : '';
    return [name, type, attrSource(tag, name, web), open + set, description];
  };

  const tags = [];
  const globals = new Map();
  for (const [name, web] of webGlobals) globals.set(name, attrRecord('*', name, web));
  for (const name of [...d.elementAttributes['*'], ...d.ariaAttributes]) if (!globals.has(name)) globals.set(name, attrRecord('*', name, null));
  const plainRecord = (name, source, description) => [name, /(^|:)href$/.test(name) ? extra.T.url : extra.T.string, source, '', description];
  for (const [name, description] of Object.entries(extra.rdfaAttributes)) if (!globals.has(name)) globals.set(name, plainRecord(name, SOURCE.rdfa, description));
  for (const [name, description] of Object.entries(extra.xmlAttributes)) globals.set(name, plainRecord(name, SOURCE.xml, description));
  const foreign = foreignRoots(d, plainRecord);
  // A tag keeps its own record of an attribute that RDFa lets every element take (rel, content).
  const isGlobal = (name) => globals.has(name) && !(name in extra.rdfaAttributes);
  tags.push(['*', 0, 'Attributes that every element takes.', [...globals.values()]]);
  for (const name of [...tagNames].sort()) {
    const web = webTags.get(name);
    const description = plain(web?.description) || extra.tagDescriptions[name] || '';
    if (!description) missing.push(name);
    const attrs = new Map();
    for (const a of web?.attributes ?? []) if (!isGlobal(a.name)) attrs.set(a.name, attrRecord(name, a.name, a));
    for (const a of [...(d.elementAttributes[name] ?? []), ...(extra.extraAttributes[name] ?? [])])
      if (!attrs.has(a) && !isGlobal(a)) attrs.set(a, attrRecord(name, a, null));
    for (const record of foreign.get(name) ?? []) if (!attrs.has(record[0]) && !globals.has(record[0])) attrs.set(record[0], record);
    tags.push([name, tagSource(name), description, [...attrs.values()].sort((x, y) => x[0].localeCompare(y[0]))]);
  }
  if (missing.length) throw new Error(`no description for: ${missing.join(' ')}`);
  return { tags, sets, usedSets };
}

// The attributes of the roots of inline SVG and MathML, <svg> and <math>, which HTML lists among
// its own elements: those of the root and those of every element of its language. Names are
// kept in lower case, as HTML compares them. Inside the roots any name goes.
function foreignRoots(d, plainRecord) {
  // Keys of the compatibility data with an underscore name features, not attributes.
  const lower = (names) => names.map((n) => n.toLowerCase()).filter((n) => !n.includes('_'));
  const bcdKeys = (o) => lower(Object.keys(o ?? {}));
  if (!d.svgTags.includes('svg') || !d.mathmlTags.includes('math')) throw new Error('the SVG and MathML data lack their roots');
  const roots = new Map();
  const add = (root, names, source, description) => {
    const records = roots.get(root) ?? new Map();
    for (const name of names) if (!records.has(name)) records.set(name, plainRecord(name, source, description));
    roots.set(root, records);
  };
  add('svg', [...lower(d.svgAttributes.svg), ...bcdKeys(d.bcd.svg.elements.svg)], SOURCE.svg, 'An attribute of the SVG root element.');
  add('svg', [...lower(d.svgAttributes['*']), ...bcdKeys(d.bcd.svg.global_attributes)], SOURCE.svg, 'An attribute that every SVG element takes.');
  add('math', bcdKeys(d.bcd.mathml.elements.math), SOURCE.mathml, 'An attribute of the MathML root element.');
  add('math', bcdKeys(d.bcd.mathml.global_attributes), SOURCE.mathml, 'An attribute that every MathML element takes.');
  return new Map([...roots].map(([root, records]) => [root, [...records.values()]]));
}

function emit(d, schema) {
  const clean = (s) => String(s).replace(/[\t\n\r]/g, ' ');
  const lines = [];
  for (const [id, name] of Object.entries(sourceNames)) lines.push(`S\t${id}\t${name}`);
  for (const [name, source, description, attrs] of schema.tags) {
    lines.push(`T\t${name}\t${source}\t${clean(description)}`);
    for (const [an, type, src, set, desc] of attrs) lines.push(`A\t${an}\t${type}\t${src}\t${set}\t${clean(desc)}`);
  }
  for (const name of [...schema.usedSets].sort())
    for (const [value, desc] of schema.sets.get(name)) lines.push(`V\t${name}\t${clean(value)}\t${clean(desc)}`);
  for (const [name, [r, g, b]] of Object.entries(d.colors).sort())
    lines.push(`C\t${name}\t${[r, g, b].map((x) => x.toString(16).padStart(2, '0')).join('')}`);
  const legacy = new Set(d.legacyEntities);
  for (const [name, value] of Object.entries(d.entities).sort()) {
    const cps = [...value].map((c) => c.codePointAt(0).toString(16).toUpperCase()).join(',');
    lines.push(`E\t${name}\t${cps}${legacy.has(name) ? '\tl' : ''}`);
  }
  const text = lines.join('\n') + '\n';
  if (text.includes(')ZTEXT"')) throw new Error('the data holds the literal terminator');

  const sourceList = Object.entries(d.meta).map(([n, m]) => `#   ${n} ${m.version} (${m.license})`).join('\n');
  return `# Generated by scripts/gen-html-schema.mjs; do not edit by hand.
# The HTML schema of the reference document, one record a line, fields split by tabs:
#   S id name                               a source that defines tags and attributes
#   T name source description               a tag ("*" holds the attributes of every tag)
#   A name type source valueset description an attribute of the tag above; a value set
#                                           starting with "~" lists examples, not all values
#   V valueset value description            one value of a value set
#   C name rrggbb                           a named colour
#   E name codepoints [l]                   a character reference; l: valid without ";"
#
# Sources of the data:
${sourceList}
# Merged with the hand-kept tables of scripts/html-schema-extra.mjs: attribute data types, the
# enumerations of legacy presentational attributes, the element and attribute names of
# HTML 4.01, and short descriptions of the legacy tags and attributes that the data sets above
# do not describe.
${text}`;
}

const dir = install();
try {
  const data = await load(dir);
  const schema = build(data);
  const out = join(dirname(fileURLToPath(import.meta.url)), '..', 'htmldoc', 'schemadata.tsv');
  writeFileSync(out, emit(data, schema));
  console.log(`wrote ${out}: ${schema.tags.length - 1} tags`);
} finally {
  rmSync(dir, { recursive: true, force: true });
}
