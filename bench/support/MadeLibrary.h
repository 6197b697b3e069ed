#pragma once

namespace korvo::bench {

/// The rows of a library as one finds them: 60 % described, a fifth edited, half with a position in a square
/// of one degree, one photo every 400.5 s from `firstCapture` on. The places are for fmt: how many photos,
/// the folder they lie in, and SQL for the folder inside of it and the file name of photo n.
inline constexpr double firstCapture = 1.2e9, captureDistance = 400.5;
inline constexpr auto fillLibrary = R"(
INSERT INTO folders (path, added_at) VALUES ('{1}', 1);
WITH RECURSIVE i(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM i WHERE n + 1 < {0})
INSERT INTO photos (folder_id, path, filename, added_at, mtime, file_size, rating, flagged, alt_text, title, caption,
  keywords, creator, copyright, edits, label, camera, lens, iso, focal_length, aperture, shutter, exif_read,
  capture_date, capture_read, latitude, longitude, gps_read, place)
SELECT 1, '{1}/' || {2} || '/' || {3}, {3}, 1.7e9 + n * 0.37, 1.2e9 + n * 400.5, 4000000 + n % 6000000, n % 6,
  n % 10 = 0,
  CASE WHEN n % 5 < 3 THEN printf('Photo of a %s temple gate in Kyoto', CASE n % 3 WHEN 0 THEN 'quiet' ELSE 'crowded' END) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('Temple gate %d in Kyoto', n) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('Temple gate %d in Kyoto, photographed in Kyoto on 15 January 2022. Shot for the autumn issue; cleared for print and web, no crop below the waterline.', n) ELSE '' END,
  CASE WHEN n % 5 < 3 THEN printf('travel, architecture, night, people, event %d', n / 40) ELSE '' END,
  'Ana Müller', '© 2022 Ana Müller',
  CASE WHEN n % 5 = 4 THEN printf('{{"exposure":%.2f,"contrast":1,"saturation":1.12,"vibrance":0.2,"temperature":4,"tint":-3,"sharpness":0.5,"straighten":0.7,"crop":{{"x":0.05,"y":0.02,"w":0.9,"h":0.93}},"highlights":0.4,"shadows":0.25,"disabledBricks":[]}}', n % 200 / 50.0) ELSE '' END,
  n % 8,
  CASE n % 4 WHEN 0 THEN 'Canon EOS R5' WHEN 1 THEN 'NIKON Z 6_2' WHEN 2 THEN 'SONY ILCE-7M4' ELSE 'FUJIFILM X-T5' END,
  CASE n % 4 WHEN 0 THEN 'RF24-70mm F2.8 L IS USM' WHEN 1 THEN 'NIKKOR Z 24-70mm f/4 S' WHEN 2 THEN 'FE 24-105mm F4 G OSS' ELSE 'XF18-55mmF2.8-4 R LM OIS' END,
  100 << n % 6, 24 + n % 100, 2.8, 1.0 / (1 + n % 2000), 1, 1.2e9 + n * 400.5, 1,
  CASE WHEN n % 2 THEN 35 + n * 7919 % 1009 / 1009.0 END, CASE WHEN n % 2 THEN 135 + n * 4243 % 997 / 997.0 END, 1,
  CASE WHEN n % 2 THEN 'Kyoto, Japan' ELSE '' END
FROM i;)";

} // namespace korvo::bench
