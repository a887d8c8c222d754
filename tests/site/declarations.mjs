// SPDX-License-Identifier: BSD-3-Clause
// Reads declarations/vhl.mi, by its own rules.
import { readFileSync } from 'node:fs';

const item = /^\s*(array )?([a-z ]+?) "(\w+)"(?: default ([^#]*?))?,?\s*(?:#:(.*))?$/;

const range = (type, hints = '') => {
  if (type === 'boolean') return 'on, off';
  const least = /min (\S+)/.exec(hints)?.[1];
  const most = /max (\S+)/.exec(hints)?.[1];
  return least || most ? `${least ?? ''} to ${most ?? ''}` : 'any';
};

const parameter = text => {
  const [, array, type, name, standard, hints] = item.exec(text);
  return [name, (array ? 'array of ' : '') + type, standard?.trim() ?? 'none', range(type, hints)];
};

/** Of every shader its name, version, text, members and parameters: rows of name, type, default and range. */
export const readDeclarations = file =>
  readFileSync(file, 'utf8').split('declare shader\n').slice(1).map(block => {
    const text = block.slice(0, block.indexOf('end declare'));
    const [, result, name, body, version] = /^ *(.*) "(\w+)" \(\n([^]*)\n *\)\n *version (\d+)\n/.exec(text);
    const members = [...result.matchAll(/([a-z ]+) "(\w+)"/g)].map(([, type, field]) => [field, type.trim()]);
    const lines = body.split('\n').filter(line => !line.trim().startsWith('# '));
    return {
      name, version, members,
      text: `declare shader\n${text}end declare`,
      result: result.replace(/ \{.*/, ''),
      parameters: lines.map(parameter),
    };
  });
