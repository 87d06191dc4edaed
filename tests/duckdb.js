// Stands in for DuckDB's own program, as far as docs/fleet.md uses it: -csv, -init FILE, -c SQL.
const fs = require("fs");
const { DuckDBInstance } = require(process.env.QUILL_DUCKDB);

const field = (value) => (value === null ? "" : /[",\r\n]/.test(value) ? `"${String(value).replaceAll('"', '""')}"` : String(value));

async function main(options) {
  const database = await (await DuckDBInstance.create(":memory:")).connect();
  while (options.length) {
    const option = options.shift();
    if (option === "-init") await database.run(fs.readFileSync(options.shift(), "utf8"));
    if (option !== "-c") continue;
    const answer = await database.runAndReadAll(options.shift());
    for (const row of [answer.columnNames(), ...answer.getRowsJson()]) process.stdout.write(row.map(field).join(",") + "\n");
  }
}

main(process.argv.slice(2)).catch((error) => { console.error(String(error)); process.exit(1); });
